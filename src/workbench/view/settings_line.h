// What a notice says of a setting, in the settings window.
#pragma once

#include <QWidget>

namespace kelm {

class Notices;

/// A line at the lower edge of the settings window that says that a setting is only stored, while a notice does: who
/// changes a setting looks there, and that window may cover the other's notices. It takes neither keys nor pointer, and
/// is not read out a second time.
class SettingsLine final : public QWidget
{
    Q_OBJECT

public:
    /// What it shows of all that notices say.
    static const QString& storedWords();

    /// The notices outlive it; it fills the lower edge of its parent.
    SettingsLine(Notices& notices, QWidget* settings);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void follow();
    void place();

    Notices& notices_;
};

} // namespace kelm
