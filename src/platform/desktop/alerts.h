// Questions to a person, behind an interface so that their askers need no window.
#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace kelm {

/// A warning with buttons. The Return key presses the first of them, as Escape does.
struct Alert
{
    QString message;
    QString informativeText;
    /// In the order of their importance, the first being the harmless one.
    QStringList buttons;
};

/// Alerts that wait for an answer. Main thread only.
class Alerts
{
public:
    virtual ~Alerts() = default;

    /// Shows a warning and returns the index of the pressed button; absent when it was closed without one.
    virtual std::optional<int> runWarning(const Alert& alert) = 0;

    /// The alerts of the program: what was installed, or before that alerts that are closed at once.
    static Alerts& shared();

    /// Says which alerts `shared` stands for; once, before its first use.
    static void install(std::unique_ptr<Alerts> alerts);
};

} // namespace kelm
