#include "learning/view/learning_mode_side_panel.h"

#include "learning/lesson_link.h"
#include "learning/lesson_texts.h"
#include "learning/view/environment_row.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int panelWidth = 280;
constexpr double groundOpacity = 0.04;
constexpr int padding = 14;
constexpr int spacing = 8;
constexpr int headingSize = 10;
constexpr int textSize = 12;
constexpr int noteSize = 11;

/// The line that a fix stands on.
class FixBox final : public QWidget
{
public:
    FixBox(const QString& fix, QWidget* parent) : QWidget(parent)
    {
        auto* row = new QHBoxLayout(this);
        row->setContentsMargins(8, 5, 8, 5);
        row->addWidget(new WrappedLabel(fix, style::monospaced(noteSize), Tint::primary(), this));
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Tint::secondary().at(0.15).on(*this));
        painter.drawRoundedRect(rect(), style::radius::chip, style::radius::chip);
    }
};

WrappedLabel* makeText(const QString& text, int size, const Tint& tint, QWidget* parent)
{
    return new WrappedLabel(text, style::interfaceFont(size), tint, parent);
}

} // namespace

LearningModeSidePanel::LearningModeSidePanel(LessonInfo lessonInfo, CodeRunner& runner, Workspace& workspace,
                                             Scheduler& scheduler, QWidget* parent)
    : QWidget(parent),
      lessonInfo_(std::move(lessonInfo)),
      runner_(runner),
      workspace_(workspace),
      scheduler_(scheduler),
      isKo_(isKorean(lessonInfo_))
{
    setFixedWidth(panelWidth);
    setAccessibleName(lessonTexts::learningMode.in(isKo_));
    auto* sections = new QWidget;
    column_ = new QVBoxLayout(sections);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    for (QWidget* section :
         std::initializer_list<QWidget*>{makeHeader(), makeRequirements(), makeRegion(), makeTips()}) {
        if (column_->count() > 0) {
            column_->addWidget(new Divider(Qt::Horizontal, this));
        }
        column_->addWidget(section);
    }
    column_->addStretch(1);

    // As wide as the panel, whatever stands in them.
    sections->setMinimumWidth(1);
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(sections);
    area->viewport()->setAutoFillBackground(false);
    sections->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);

    diagnosisTimer_.setSingleShot(true);
    connect(&diagnosisTimer_, &QTimer::timeout, this, &LearningModeSidePanel::updateDiagnosis);
    connect(&runner_, &CodeRunner::stderrBufferChanged, this, [this] {
        if (runner_.isStderrEmpty()) {
            diagnosisTimer_.stop();
            updateDiagnosis();
        } else if (!diagnosisTimer_.isActive()) {
            diagnosisTimer_.start();
        }
    });
    recheckEnv();
    updateDiagnosis();
}

QWidget* LearningModeSidePanel::makeSection(const QString& heading, const Tint& tint)
{
    auto* section = new QWidget(this);
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(padding, padding - 2, padding, padding - 2);
    column->setSpacing(spacing);
    if (!heading.isEmpty()) {
        column->addWidget(new TextLabel(heading, style::interfaceFont(headingSize, QFont::DemiBold), tint, section));
    }
    return section;
}

QWidget* LearningModeSidePanel::makeHeader()
{
    QWidget* section = makeSection({}, Tint::secondary());
    auto* label = new QHBoxLayout;
    label->setSpacing(6);
    label->addWidget(new SymbolLabel(u"graduationcap.fill"_s, 16, Tint::accent(), section));
    label->addWidget(new TextLabel(lessonTexts::learningMode.in(isKo_), style::interfaceFont(textSize, QFont::DemiBold),
                                   Tint::accent(), section),
                     1);
    auto* column = static_cast<QVBoxLayout*>(section->layout());
    column->addLayout(label);
    column->addWidget(new WrappedLabel(lessonInfo_.title.value_or(lessonInfo_.slug),
                                       style::interfaceFont(15, QFont::DemiBold), Tint::primary(), section));
    const bool hasCompanion = workspace_.applicationForScheme(u"tutorbay"_s).has_value();
    if (const auto url = lessonURL(lessonInfo_, hasCompanion, QStringLiteral(KELM_LESSON_SITE))) {
        auto* link = new PlainButton({.symbol = u"arrow.up.right.square"_s,
                                      .symbolSize = 12,
                                      .textSize = textSize,
                                      .tint = Tint::accent(),
                                      .padding = {4, 3, 6, 3}},
                                     section);
        link->setText(lessonTexts::openLesson.in(isKo_));
        link->setHelp(*url);
        connect(link, &PlainButton::clicked, this, [this, url] { workspace_.openURL(QUrl(*url)); });
        column->addWidget(link, 0, Qt::AlignLeft);
    }
    return section;
}

QWidget* LearningModeSidePanel::makeRequirements()
{
    QWidget* section = makeSection(lessonTexts::keysNeeded.in(isKo_), Tint::secondary());
    auto* column = static_cast<QVBoxLayout*>(section->layout());
    if (lessonInfo_.requires_.isEmpty()) {
        column->addWidget(makeText(lessonTexts::noKeysNeeded.in(isKo_), textSize, Tint::secondary(), section));
        return section;
    }
    requirements_ = new QVBoxLayout;
    requirements_->setSpacing(spacing);
    column->addLayout(requirements_);
    auto* recheck = new PlainButton(
        {.symbol = u"arrow.clockwise"_s, .symbolSize = 11, .textSize = noteSize, .padding = {4, 3, 6, 3}}, section);
    recheck->setText(lessonTexts::recheck.in(isKo_));
    connect(recheck, &PlainButton::clicked, this, &LearningModeSidePanel::recheckEnv);
    column->addWidget(recheck, 0, Qt::AlignLeft);
    return section;
}

void LearningModeSidePanel::recheckEnv()
{
    QHash<QString, bool> environment;
    for (const QString& key : std::as_const(lessonInfo_.requires_)) {
        environment.insert(key, !qEnvironmentVariableIsEmpty(key.toLocal8Bit().constData()));
    }
    envCache_ = environment;
    ++refreshTick_;
    fillRequirements();
}

void LearningModeSidePanel::fillRequirements()
{
    if (requirements_ == nullptr) {
        return;
    }
    for (int index = 0; index < lessonInfo_.requires_.size(); ++index) {
        const QString& key = lessonInfo_.requires_[index];
        const bool isSet = envCache_.value(key, false);
        QLayoutItem* const item = requirements_->itemAt(index);
        auto* const row = item != nullptr ? static_cast<EnvRow*>(item->widget()) : nullptr;
        // A row that tells the same stays, with what it says of its copy.
        if (row != nullptr && row->isSet() == isSet) {
            continue;
        }
        auto* const made = new EnvRow(key, isSet, isKo_, scheduler_, this);
        if (row == nullptr) {
            requirements_->addWidget(made);
        } else {
            delete requirements_->replaceWidget(row, made);
            row->hide();
            row->deleteLater();
        }
    }
}

QWidget* LearningModeSidePanel::makeRegion()
{
    QWidget* section = makeSection(lessonTexts::region.in(isKo_), Tint::secondary());
    auto* lines = new QHBoxLayout;
    lines->setSpacing(6);
    lines->addWidget(new SymbolLabel(u"book"_s, 13, Tint::accent(), section));
    lines->addWidget(new TextLabel(lessonTexts::regionLines(lessonInfo_.regionStart, lessonInfo_.regionEnd, isKo_),
                                   style::interfaceFont(textSize), Tint::primary(), section),
                     1);
    auto* column = static_cast<QVBoxLayout*>(section->layout());
    column->addLayout(lines);
    column->addWidget(makeText(lessonTexts::regionNote.in(isKo_), noteSize, Tint::secondary(), section));
    return section;
}

QWidget* LearningModeSidePanel::makeTips()
{
    QWidget* section = makeSection(lessonTexts::tipsHeading.in(isKo_), Tint::secondary());
    for (const LessonText& tip : lessonTexts::tips) {
        section->layout()->addWidget(makeText(tip.in(isKo_), noteSize, Tint::secondary(), section));
    }
    return section;
}

QWidget* LearningModeSidePanel::makeDiagnosis(const Diagnosis& diagnosis)
{
    QWidget* section = makeSection(lessonTexts::diagnosis.in(isKo_), SystemColor::orange);
    auto* column = static_cast<QVBoxLayout*>(section->layout());
    auto* title = new QHBoxLayout;
    title->setSpacing(6);
    title->addWidget(new SymbolLabel(u"exclamationmark.triangle.fill"_s, 11, SystemColor::orange, section));
    title->addWidget(
        new TextLabel(diagnosis.title, style::interfaceFont(textSize, QFont::DemiBold), Tint::primary(), section), 1);
    column->addLayout(title);
    column->addWidget(makeText(diagnosis.message, noteSize, Tint::secondary(), section));
    if (diagnosis.fix) {
        auto* copy = new PlainButton(
            {.symbol = u"doc.on.doc"_s, .symbolSize = 13, .tint = Tint::accent(), .fixedSize = {26, 26}}, section);
        copy->setHelp(tr("Copy"));
        connect(copy, &PlainButton::clicked, this,
                [fix = *diagnosis.fix] { QGuiApplication::clipboard()->setText(fix); });
        auto* row = new QHBoxLayout;
        row->addWidget(new FixBox(*diagnosis.fix, section), 1);
        row->addWidget(copy);
        column->addLayout(row);
    }
    // A divider of its own comes and goes with it.
    auto* framed = new QWidget(this);
    auto* frame = new QVBoxLayout(framed);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->setSpacing(0);
    frame->addWidget(new Divider(Qt::Horizontal, framed));
    frame->addWidget(section);
    return framed;
}

void LearningModeSidePanel::updateDiagnosis()
{
    QElapsedTimer clock;
    clock.start();
    const auto found = diagnose(runner_.stderrBuffer(), isKo_);
    // A run that writes without end is looked at ever more rarely.
    constexpr int least = 16;
    diagnosisTimer_.setInterval(std::max(least, static_cast<int>(clock.elapsed()) * 10));
    if (found == diagnosis_) {
        return;
    }
    diagnosis_ = found;
    delete diagnosisSection_;
    diagnosisSection_ = nullptr;
    if (diagnosis_) {
        constexpr int behindRequirements = 3;
        diagnosisSection_ = makeDiagnosis(*diagnosis_);
        column_->insertWidget(behindRequirements, diagnosisSection_);
    }
}

void LearningModeSidePanel::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), Tint::secondary().at(groundOpacity).on(*this));
}

} // namespace kelm
