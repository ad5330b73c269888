#include "platform/desktop/view/alert_dialogs.h"

#include "platform/style/view/style.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace kelm {

namespace {

/// Gives Return to one button, whichever of them has the keyboard: some desktops, and a default button that follows the
/// focus, would press that one.
class ReturnPresses final : public QObject
{
public:
    ReturnPresses(QAbstractButton& pressed, const QList<QAbstractButton*>& buttons)
        : QObject(&pressed), pressed_(pressed)
    {
        for (QAbstractButton* button : buttons) {
            button->installEventFilter(this);
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress) {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
                pressed_.click();
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QAbstractButton& pressed_;
};

} // namespace

std::optional<int> AlertDialogs::runWarning(const Alert& alert)
{
    QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(), alert.message, QMessageBox::NoButton,
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(alert.informativeText);
    if (auto* message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        message->setFont(style::headlineFont());
    }
    QList<QAbstractButton*> buttons;
    for (const QString& text : alert.buttons) {
        const auto role = buttons.isEmpty() ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        buttons.append(box.addButton(text, role));
    }
    if (!buttons.isEmpty()) {
        box.setDefaultButton(static_cast<QPushButton*>(buttons.first()));
        box.setEscapeButton(buttons.first());
        new ReturnPresses(*buttons.first(), buttons);
    }
    box.exec();
    const qsizetype index = buttons.indexOf(box.clickedButton());
    return index < 0 ? std::nullopt : std::optional(static_cast<int>(index));
}

} // namespace kelm
