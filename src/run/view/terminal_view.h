// The terminal page of the bottom panel.
#pragma once

#include "run/terminal_session.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace kelm {

class TerminalStrip;
class TerminalTextView;

/// Makes the text surface of a session and ties the two together; neither keeps the other alive.
class TerminalViewRepresentable
{
public:
    explicit TerminalViewRepresentable(TerminalSession& session) : session_(session) {}

    /// `parent` owns the view.
    TerminalTextView* makeView(QWidget* parent) const;
    /// Nothing of the view follows anything else.
    void updateView() const {}

private:
    TerminalSession& session_;
};

/// One terminal, on black. It has one session, which it makes itself and keeps for its life; a command that runs when
/// it goes is left alone.
class TerminalView final : public QWidget
{
    Q_OBJECT

public:
    explicit TerminalView(TerminalSession::Services services, QWidget* parent = nullptr);
    ~TerminalView() override;

    TerminalSession& session() { return *session_; }
    TerminalTextView& textView() { return *textView_; }
    TerminalStrip& strip() { return *strip_; }

private:
    std::unique_ptr<TerminalSession> session_;
    TerminalTextView* textView_;
    TerminalStrip* strip_;
};

} // namespace kelm
