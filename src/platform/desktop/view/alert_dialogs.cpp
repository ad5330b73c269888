#include "platform/desktop/view/alert_dialogs.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace kelm {

std::optional<int> AlertDialogs::runWarning(const Alert& alert)
{
    QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(), alert.message, QMessageBox::NoButton,
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(alert.informativeText);
    QList<QAbstractButton*> buttons;
    for (const QString& text : alert.buttons) {
        const auto role = buttons.isEmpty() ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        buttons.append(box.addButton(text, role));
    }
    if (!buttons.isEmpty()) {
        box.setDefaultButton(static_cast<QPushButton*>(buttons.first()));
        box.setEscapeButton(buttons.first());
    }
    box.exec();
    const qsizetype index = buttons.indexOf(box.clickedButton());
    return index < 0 ? std::nullopt : std::optional(static_cast<int>(index));
}

} // namespace kelm
