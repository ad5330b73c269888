#include "run/view/terminal_view.h"

#include "platform/desktop/named_colors.h"
#include "run/view/terminal_strip.h"
#include "run/view/terminal_text_view.h"

#include <QVBoxLayout>

namespace kelm {

TerminalTextView* TerminalViewRepresentable::makeView(QWidget* parent) const
{
    auto* view = new TerminalTextView(parent);
    view->setSession(&session_);
    session_.setTextView(view);
    return view;
}

TerminalView::TerminalView(TerminalSession::Services services, QWidget* parent)
    : QWidget(parent), session_(std::make_unique<TerminalSession>(std::move(services)))
{
    QPalette onBlack = palette();
    onBlack.setColor(QPalette::Window, plainColors::black);
    setPalette(onBlack);
    setAutoFillBackground(true);
    textView_ = TerminalViewRepresentable(*session_).makeView(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(textView_, 1);
    strip_ = new TerminalStrip(*session_, textView_->typedAhead(), this);
    layout->addWidget(strip_);
    setFocusProxy(textView_);
}

TerminalView::~TerminalView() = default;

} // namespace kelm
