// What was typed while a command ran.
#pragma once

#include "run/terminal_session.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <memory>

class QKeyEvent;

namespace kelm {

class TextView;

/// Follows the keys that wait for the end of a command, and knows the lines that will come of them, so that they can be
/// shown meanwhile. The keys themselves are kept and take effect elsewhere; what only a prompt can tell, such as what
/// Tab completes, is not foreseen. Main thread only.
class TypedAhead final : public QObject
{
    Q_OBJECT

public:
    TypedAhead();
    ~TypedAhead() override;

    /// Whose history Up and Down walk through.
    void setSession(TerminalSession* session) { session_ = session; }

    /// A key waits.
    void addKey(const QKeyEvent& key);
    /// A text that an input method has committed waits.
    void addText(const QString& text);
    /// The first of those that wait takes effect. `isReturn` tells whether it is the key that runs a line.
    void take(bool isReturn);
    /// Nothing waits any more.
    void clear();

    bool isEmpty() const { return lines_.isEmpty() && begun_.isEmpty(); }
    /// The lines that will be run.
    const QStringList& lines() const { return lines_; }
    /// What is typed behind them and not ended yet.
    const QString& begun() const { return begun_; }

Q_SIGNALS:
    void changed();

private:
    TextView& editor();
    void showHistory(qsizetype step);
    void setEdited(const QString& text);

    QPointer<TerminalSession> session_;
    /// Never shown: it does what a text view does with its keys.
    std::unique_ptr<TextView> editor_;
    QStringList lines_;
    QString begun_;
    /// The place in the history of the session and the lines behind it.
    qsizetype historyIndex_ = 0;
    bool isInHistory_ = false;
};

} // namespace kelm
