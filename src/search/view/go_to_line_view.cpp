#include "search/view/go_to_line_view.h"

#include "app/state/app_state.h"
#include "platform/process/log.h"
#include "platform/style/view/style.h"
#include "platform/text/decimal_integer.h"
#include "platform/view/labels.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int panelWidth = 200;
constexpr int shadowRadius = 10;
constexpr int padding = 14;

} // namespace

GoToLineView::GoToLineView(AppState& appState, Log& log, QWidget* parent)
    : OverlayCard(panelWidth, shadowRadius, parent), appState_(appState), log_(log), lineNumber_(new QLineEdit(this))
{
    lineNumber_->setPlaceholderText(u"Line number"_s);
    lineNumber_->setAccessibleName(u"Line number"_s);
    lineNumber_->installEventFilter(this);
    setAccessibleName(tr("Go to line"));
    setFocusProxy(lineNumber_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(10);
    column->addWidget(new TextLabel(u"Go to Line"_s, style::headlineFont(), Tint::primary(), this));
    column->addWidget(lineNumber_);
}

void GoToLineView::submit()
{
    if (const auto number = decimalInteger(lineNumber_->text())) {
        log_.print(u"Go to line: "_s + QString::number(*number));
        Q_EMIT submitted(*number);
    }
    appState_.setShowGoToLine(false);
}

bool GoToLineView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == lineNumber_ && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            submit();
            return true;
        case Qt::Key_Escape:
            appState_.setShowGoToLine(false);
            return true;
        default:
            break;
        }
    }
    return OverlayCard::eventFilter(watched, event);
}

} // namespace kelm
