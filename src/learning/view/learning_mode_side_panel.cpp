#include "learning/view/learning_mode_side_panel.h"

#include "learning/lesson_texts.h"
#include "learning/link_permission.h"
#include "learning/view/diagnosis_section.h"
#include "learning/view/lesson_way_back.h"
#include "learning/view/requirement_list.h"
#include "platform/text/platform_words.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_role.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QProcessEnvironment>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int panelWidth = 280;
constexpr double groundOpacity = 0.04;
constexpr int titleSize = 15;
/// From one look at what a run writes to the next, in milliseconds.
constexpr int leastLookInterval = 16;
/// More of a title is not laid out: that costs milliseconds for each thousand letters.
constexpr qsizetype mostOfTitle = 3000;

} // namespace

LearningModeSidePanel::LearningModeSidePanel(const Services& services, QWidget* parent)
    : QWidget(parent),
      runner_(services.runner),
      scheduler_(services.scheduler),
      userDefaults_(services.userDefaults),
      wayBack_(new LessonWayBack(services.workspace, this)),
      area_(new QScrollArea(this))
{
    setFixedWidth(panelWidth);
    auto* sections = new QWidget;
    column_ = new QVBoxLayout(sections);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    // As wide as the panel, whatever stands in them.
    sections->setMinimumWidth(1);
    area_->setFrameShape(QFrame::NoFrame);
    area_->setWidgetResizable(true);
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area_->setFocusPolicy(Qt::NoFocus);
    area_->setWidget(sections);
    area_->viewport()->setAutoFillBackground(false);
    sections->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area_);
    makeSections();
    followRunner();
    connect(&userDefaults_, &UserDefaults::valueChanged, this, [this](const QString& key) {
        if (key == linkPermission::key) {
            fillPermission();
        }
    });
}

LearningModeSidePanel::~LearningModeSidePanel() = default;

void LearningModeSidePanel::followRunner()
{
    diagnosisTimer_.setSingleShot(true);
    connect(&diagnosisTimer_, &QTimer::timeout, this, &LearningModeSidePanel::lookAgain);
    connect(&runner_, &CodeRunner::isRunningChanged, this, [this] { runsBegun_ += runner_.isRunning() ? 1 : 0; });
    connect(&runner_, &CodeRunner::stderrBufferChanged, this, [this] {
        if (runner_.isStderrEmpty()) {
            updateDiagnosis();
        } else if (!diagnosisTimer_.isActive()) {
            diagnosisTimer_.start();
        }
    });
}

// ---- What there is --------------------------------------------------------------------------------------------------

void LearningModeSidePanel::makeSections()
{
    using enum LessonSection::Place;
    header_ = new LessonSection(first, Tint::secondary(), this);
    requirements_ = new LessonSection(behindAnother, Tint::secondary(), this);
    diagnosisSection_ = new DiagnosisSection(scheduler_, this);
    region_ = new LessonSection(behindAnother, Tint::secondary(), this);
    tips_ = new LessonSection(behindAnother, Tint::secondary(), this);
    permission_ = new LessonSection(behindAnother, Tint::secondary(), this);
    makeHeader();
    makeRequirements();
    makeRegion();
    for (WrappedLabel*& line : tipLines_) {
        line = tips_->addText(lessonSizes::note, Tint::secondary());
    }
    makePermission();
    for (QWidget* section :
         std::initializer_list<QWidget*>{header_, requirements_, diagnosisSection_, region_, tips_, permission_}) {
        column_->addWidget(section);
    }
    column_->addStretch(1);
    diagnosisSection_->setVisible(false);
}

PlainButton* LearningModeSidePanel::addButton(LessonSection& section, const QString& symbol, int symbolSize)
{
    auto* button = new PlainButton(
        {.symbol = symbol, .symbolSize = symbolSize, .textSize = lessonSizes::note, .padding = {4, 3, 6, 3}}, &section);
    section.column().addWidget(button, 0, Qt::AlignLeft);
    return button;
}

void LearningModeSidePanel::makeHeader()
{
    learningMode_ = header_->addSymbolLine(u"graduationcap.fill"_s, 16, Tint::accent(),
                                           style::interfaceFont(lessonSizes::text, QFont::DemiBold), Tint::accent());
    title_ = header_->addText(titleSize, Tint::primary(), QFont::DemiBold);
    openLesson_ = addButton(*header_, u"arrow.up.right.square"_s, 12);
    ButtonLook look = openLesson_->look();
    look.textSize = lessonSizes::text;
    look.tint = Tint::accent();
    openLesson_->setLook(look);
    connect(openLesson_, &PlainButton::clicked, wayBack_, &LessonWayBack::open);
    connect(wayBack_, &LessonWayBack::found, openLesson_, &PlainButton::setHelp);
}

void LearningModeSidePanel::makeRequirements()
{
    noKeys_ = requirements_->addText(lessonSizes::text, Tint::secondary());
    // A row says by itself that its line was copied.
    keys_ = new RequirementList(
        *area_, [] {}, scheduler_, requirements_);
    requirements_->column().addWidget(keys_);
    recheck_ = addButton(*requirements_, u"arrow.clockwise"_s, 11);
    connect(recheck_, &PlainButton::clicked, this, &LearningModeSidePanel::recheckEnv);
}

void LearningModeSidePanel::makeRegion()
{
    regionLines_ =
        region_->addSymbolLine(u"book"_s, 13, Tint::accent(), style::interfaceFont(lessonSizes::text), Tint::primary());
    regionNote_ = region_->addText(lessonSizes::note, Tint::secondary());
}

void LearningModeSidePanel::makePermission()
{
    linksRun_ = permission_->addText(lessonSizes::note, Tint::secondary());
    askAgain_ = addButton(*permission_, u"arrow.uturn.backward"_s, 11);
    connect(askAgain_, &PlainButton::clicked, this, [this] { linkPermission::takeBack(userDefaults_); });
}

// ---- What it says ---------------------------------------------------------------------------------------------------

void LearningModeSidePanel::setLesson(const LessonInfo& lessonInfo, quint64 runsBefore)
{
    lessonInfo_ = lessonInfo;
    runsBefore_ = runsBefore;
    isKo_ = isKorean(lessonInfo_);
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(lessonTexts::learningMode.in(isKo_));
    fillHeader();
    fillRegion();
    fillTips();
    fillPermission();
    recheckEnv();
    // In the words of this lesson, whatever was said in those of another.
    diagnosis_.reset();
    diagnosisSection_->setVisible(false);
    updateDiagnosis();
    area_->verticalScrollBar()->setValue(0);
}

void LearningModeSidePanel::fillHeader()
{
    learningMode_->setText(lessonTexts::learningMode.in(isKo_));
    // Blanks at its ends are nobody's name.
    const QString title = lessonInfo_.title.value_or(lessonInfo_.slug).trimmed();
    title_->setText(shownName(shownPart(title, mostOfTitle)));
    openLesson_->setText(lessonTexts::openLesson.in(isKo_));
    openLesson_->setHelp({});
    openLesson_->updateGeometry();
    wayBack_->setLesson(lessonInfo_);
    openLesson_->setVisible(wayBack_->exists());
}

void LearningModeSidePanel::recheckEnv()
{
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QHash<QString, bool> areSet;
    areSet.reserve(lessonInfo_.requires_.size());
    for (const QString& key : std::as_const(lessonInfo_.requires_)) {
        areSet.insert(key, !environment.value(key).isEmpty());
    }
    envCache_ = areSet;
    ++refreshTick_;
    fillRequirements();
}

void LearningModeSidePanel::fillRequirements()
{
    requirements_->setHeading(lessonTexts::keysNeeded.in(isKo_));
    const bool isEmpty = lessonInfo_.requires_.isEmpty();
    noKeys_->setText(lessonTexts::noKeysNeeded.in(isKo_));
    noKeys_->setVisible(isEmpty);
    recheck_->setText(lessonTexts::recheck.in(isKo_));
    recheck_->updateGeometry();
    recheck_->setVisible(!isEmpty);
    keys_->show(lessonInfo_.requires_, envCache_, isKo_);
}

void LearningModeSidePanel::fillRegion()
{
    region_->setVisible(lessonInfo_.namesRegion);
    region_->setHeading(lessonTexts::region.in(isKo_));
    regionLines_->setText(lessonTexts::regionLines(lessonInfo_.regionStart, lessonInfo_.regionEnd, isKo_));
    regionNote_->setText(lessonTexts::regionNote.in(isKo_));
}

void LearningModeSidePanel::fillTips()
{
    tips_->setHeading(lessonTexts::tipsHeading.in(isKo_));
    for (std::size_t index = 0; index < tipLines_.size(); ++index) {
        tipLines_[index]->setText(inPlatformWords(lessonTexts::tips[index].in(isKo_)));
    }
}

void LearningModeSidePanel::fillPermission()
{
    permission_->setHeading(lessonTexts::linksHeading.in(isKo_));
    linksRun_->setText(lessonTexts::linksRun.in(isKo_));
    askAgain_->setText(lessonTexts::askAgain.in(isKo_));
    askAgain_->updateGeometry();
    permission_->setVisible(linkPermission::isGiven(userDefaults_));
}

void LearningModeSidePanel::updateDiagnosis()
{
    // Long ones are joined and gone through beside the main thread.
    constexpr qsizetype longErrors = qsizetype(64) << 10;
    diagnosisTimer_.stop();
    diagnosisTask_.stop();
    isDiagnosisStale_ = false;
    if (runsBegun_ == runsBefore_ || runner_.isStderrEmpty()) {
        showDiagnosis(std::nullopt);
        return;
    }
    if (runner_.standardError().units() <= longErrors) {
        diagnosisTimer_.setInterval(leastLookInterval);
        showDiagnosis(diagnose(runner_.stderrBuffer(), isKo_));
        return;
    }
    diagnosisTask_.start([this, errors = runner_.standardError(),
                          isKo = isKo_](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        QElapsedTimer clock;
        clock.start();
        return [this, found = diagnose(errors.text(), isKo), clock] {
            // A run that writes without end is looked at ever more rarely.
            diagnosisTimer_.setInterval(std::max(leastLookInterval, static_cast<int>(clock.elapsed()) * 10));
            showDiagnosis(found);
            if (std::exchange(isDiagnosisStale_, false)) {
                diagnosisTimer_.start();
            }
        };
    });
}

void LearningModeSidePanel::lookAgain()
{
    if (diagnosisTask_.isRunning()) {
        isDiagnosisStale_ = true;
    } else {
        updateDiagnosis();
    }
}

void LearningModeSidePanel::showDiagnosis(const std::optional<Diagnosis>& diagnosis)
{
    if (diagnosis == diagnosis_) {
        return;
    }
    diagnosis_ = diagnosis;
    if (diagnosis_) {
        diagnosisSection_->show(*diagnosis_, isKo_);
    }
    diagnosisSection_->setVisible(diagnosis_.has_value());
}

void LearningModeSidePanel::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), Tint::secondary().at(groundOpacity).on(*this));
}

} // namespace kelm
