#include "learning/view/diagnosis_section.h"

#include "learning/lesson_texts.h"
#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "platform/view/plain_button.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr std::chrono::milliseconds copiedTime(1500);
constexpr qsizetype mostShown = 1000;
constexpr qsizetype mostSpoken = 300;
constexpr int copiedSize = 10;

const ButtonLook symbolLook{.symbol = u"doc.on.doc"_s,
                            .symbolSize = 13,
                            .textSize = copiedSize,
                            .tint = Tint::accent(),
                            .padding = {4, 1, 4, 1}};

/// The line that a fix stands on.
class FixBox final : public QWidget
{
public:
    FixBox(WrappedLabel* fix, QWidget* parent) : QWidget(parent)
    {
        auto* row = new QHBoxLayout(this);
        row->setContentsMargins(8, 5, 8, 5);
        row->addWidget(fix);
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

} // namespace

DiagnosisSection::DiagnosisSection(Scheduler& scheduler, QWidget* parent)
    : LessonSection(Place::behindAnother, SystemColor::orange, parent),
      copiedEnd_(scheduler, copiedTime, [this] { setCopied(false); }),
      title_(addSymbolLine(u"exclamationmark.triangle.fill"_s, 11, SystemColor::orange,
                           style::interfaceFont(lessonSizes::text, QFont::DemiBold), Tint::primary())),
      message_(addText(lessonSizes::note, Tint::secondary()))
{
    setAccessibleRole(*this, QAccessible::Notification);
    addFix();
}

void DiagnosisSection::addFix()
{
    fixRow_ = new QWidget(this);
    fixText_ = new WrappedLabel({}, style::monospaced(lessonSizes::note), Tint::primary(), fixRow_);
    copyButton_ = new PlainButton(symbolLook, fixRow_);
    connect(copyButton_, &PlainButton::clicked, this, &DiagnosisSection::copyFix);
    auto* row = new QHBoxLayout(fixRow_);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new FixBox(fixText_, fixRow_), 1);
    row->addWidget(copyButton_);
    column().addWidget(fixRow_);
}

void DiagnosisSection::show(const Diagnosis& diagnosis, bool isKo)
{
    isKo_ = isKo;
    setHeading(lessonTexts::diagnosis.in(isKo));
    title_->setText(diagnosis.title);
    message_->setText(shownPart(diagnosis.message, mostShown));
    setAccessibleName(diagnosis.title + QStringLiteral(". ") + shownPart(diagnosis.message, mostSpoken));
    announce(*this);
    fixRow_->setVisible(diagnosis.fix.has_value());
    fix_ = diagnosis.fix.value_or(QString());
    fixText_->setText(shownPart(fix_, mostShown));
    copiedEnd_.cancel();
    setCopied(false);
}

void DiagnosisSection::copyFix()
{
    QGuiApplication::clipboard()->setText(fix_);
    setCopied(true);
    copiedEnd_.restart();
}

void DiagnosisSection::setCopied(bool copied)
{
    copied_ = copied;
    const QString said = lessonTexts::copied.in(isKo_);
    ButtonLook look = symbolLook;
    // As wide as its words from the beginning, so that nothing beside it moves.
    const QFontMetrics metrics(style::interfaceFont(copiedSize));
    look.fixedSize = {std::max(26, metrics.horizontalAdvance(said) + 9), 26};
    if (copied) {
        look.symbol.clear();
        look.spacing = 0;
    }
    copyButton_->setLook(look);
    copyButton_->setText(copied ? said : QString());
    // Its name while it shows no text; the name of a text is the text.
    copyButton_->setAccessibleName(copied ? QString() : lessonTexts::copyFix.in(isKo_));
    copyButton_->setToolTip(copied ? QString() : lessonTexts::copyFix.in(isKo_));
}

} // namespace kelm
