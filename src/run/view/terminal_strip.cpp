#include "run/view/terminal_strip.h"

#include "platform/style/view/style.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_news.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "run/ansi_parser.h"

#include <QBoxLayout>
#include <QPainter>

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// As high, and with the same type, as the line of notices.
constexpr int hintHeight = 26;
constexpr int textSize = 11;
constexpr int spacing = 16;
constexpr int endPadding = 8;
constexpr int linesPadding = 4;
constexpr double edgeOpacity = 0.15;

/// Stands where the next letter of a line that is being typed will be.
constexpr QChar caret(0x258f);

} // namespace

TerminalStrip::TerminalStrip(TerminalSession& session, const TypedAhead& typedAhead, QWidget* parent)
    : QWidget(parent),
      session_(&session),
      typedAhead_(typedAhead),
      hintRow_(new QWidget(this)),
      hint_(new TextLabel({}, style::interfaceFont(textSize), Tint::primary().at(0.85), hintRow_)),
      howToEnd_(new TextLabel(tr("Escape again ends it"), style::interfaceFont(textSize), Tint::secondary(), hintRow_)),
      endButton_(nullptr),
      waitingRow_(new QWidget(this)),
      waitingLines_(new QVBoxLayout)
{
    // A terminal is black in both appearances.
    setPalette(style::palette(Appearance::dark));
    ButtonLook look = borderedLook();
    look.textSize = textSize;
    look.padding = {8, 1, 8, 1};
    endButton_ = new PlainButton(look, hintRow_);
    endButton_->setText(tr("End"));
    hint_->setElideMode(Qt::ElideMiddle);
    howToEnd_->setGivesWay(false);
    hintRow_->setFixedHeight(hintHeight);
    auto* hint = new QHBoxLayout(hintRow_);
    hint->setContentsMargins(endPadding, 1, endPadding, 0);
    hint->setSpacing(spacing);
    hint->addWidget(hint_, 1);
    hint->addWidget(howToEnd_);
    hint->addWidget(endButton_);
    auto* waiting = new QHBoxLayout(waitingRow_);
    waiting->setContentsMargins(endPadding, linesPadding, endPadding, linesPadding);
    waiting->setSpacing(spacing);
    auto* caption = new TextLabel(tr("Waiting"), style::interfaceFont(textSize), Tint::secondary(), waitingRow_);
    caption->setGivesWay(false);
    waiting->addWidget(caption, 0, Qt::AlignTop);
    waiting->addLayout(waitingLines_, 1);
    waitingLines_->setSpacing(0);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(0);
    rows->addWidget(hintRow_);
    rows->addWidget(waitingRow_);
    connect(endButton_, &PlainButton::clicked, &session, &TerminalSession::endCommand);
    connect(&session, &TerminalSession::isInterruptOutlastedChanged, this, &TerminalStrip::showHint);
    connect(&typedAhead, &TypedAhead::changed, this, &TerminalStrip::showWaiting);
    hintRow_->hide();
    waitingRow_->hide();
    hide();
}

QString TerminalStrip::hint() const
{
    return hintRow_->isHidden() ? QString() : hint_->text() + u' ' + howToEnd_->text();
}

QStringList TerminalStrip::waitingLines() const
{
    QStringList lines;
    for (int row = 0; row < waitingLines_->count() && !waitingRow_->isHidden(); ++row) {
        lines.append(static_cast<TextLabel*>(waitingLines_->itemAt(row)->widget())->text());
    }
    return lines;
}

void TerminalStrip::showHint()
{
    const bool isOutlasted = session_ && session_->isInterruptOutlasted();
    if (isOutlasted) {
        hint_->setText(tr("“%1” still runs").arg(shownName(session_->commandHistory().last().simplified())));
    }
    hintRow_->setVisible(isOutlasted);
    follow();
    if (isOutlasted) {
        setAccessibleName(hint());
        announce(*this);
    }
}

void TerminalStrip::showWaiting()
{
    QStringList lines = typedAhead_.lines();
    if (!typedAhead_.begun().isEmpty()) {
        // Several, where some were pasted.
        lines += (typedAhead_.begun() + caret).split(u'\n');
    }
    if (lines.size() > mostLines) {
        const qsizetype more = lines.size() - mostLines + 1;
        lines = QStringList{tr("%1 more").arg(more)} + lines.last(mostLines - 1);
    }
    while (waitingLines_->count() > lines.size()) {
        const std::unique_ptr<QLayoutItem> last(waitingLines_->takeAt(waitingLines_->count() - 1));
        delete last->widget();
    }
    while (waitingLines_->count() < lines.size()) {
        waitingLines_->addWidget(
            new TextLabel({}, style::monospaced(ANSIParser::fontSize), Tint::secondary(), waitingRow_));
    }
    for (int row = 0; row < waitingLines_->count(); ++row) {
        static_cast<TextLabel*>(waitingLines_->itemAt(row)->widget())->setText(lines[row].simplified());
    }
    waitingRow_->setVisible(!lines.isEmpty());
    follow();
}

void TerminalStrip::follow()
{
    setVisible(!hintRow_->isHidden() || !waitingRow_->isHidden());
    update();
}

void TerminalStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.fillRect(QRect(0, 0, width(), 1), Tint::primary().at(edgeOpacity).on(*this));
}

} // namespace kelm
