// What an input method composes, wherever in the program.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>

class QInputMethodEvent;

namespace kelm {

/// Sees to it that each composition ends exactly once, where it was begun. A press of the mouse anywhere first puts the
/// composition into its field, so that buttons find it there. What an input method commits is for the field that it was
/// composed in, whoever has the keyboard by then. And some input methods, once they are told that a composition has
/// ended, commit it again, a moment later and to whoever has the keyboard: that is dropped. It comes before anything
/// that the method makes of later keys.
///
/// Follows all fields of the application. Main thread only.
class Compositions final : public QObject
{
public:
    explicit Compositions(QObject* parent);

    /// Puts what is being composed, in whatever field, into it.
    void end();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handle(QObject& field, QInputMethodEvent& event);
    static void commitTo(QObject& field, const QString& text);

    /// The field that something is composed in, and what is seen of it; null while nothing is.
    QPointer<QObject> field_;
    QString preedit_;
    /// What may come once more.
    std::optional<QString> echo_;
};

} // namespace kelm
