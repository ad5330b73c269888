#include "settings/view/settings_form.h"

#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "settings/settings_table.h"
#include "settings/view/setting_control.h"

#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int margin = 28;
constexpr int sectionGap = 16;
constexpr int indent = 12;

/// Shows a control only while the toggle that it belongs to is on.
void followToggle(QWidget& control, const QString& toggleKey, UserDefaults& store)
{
    const auto show = [&control, &store, toggleKey] {
        control.setVisible(settingValue(store, settingOf(toggleKey)).toBool());
    };
    show();
    QObject::connect(&store, &UserDefaults::valueChanged, &control, [show, toggleKey](const QString& key) {
        if (key == toggleKey) {
            show();
        }
    });
}

} // namespace

SettingsForm::SettingsForm(const QString& tab, const QStringList& sections, UserDefaults& store, QWidget* parent)
    : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin - 8, margin, margin);
    column->setSpacing(8);
    for (const QString& section : sections) {
        if (column->count() > 0) {
            column->addSpacing(sectionGap - column->spacing());
        }
        column->addWidget(new TextLabel(section, style::headlineFont(), Tint::primary(), this));
        for (const Setting& setting : settingsTable()) {
            if (setting.tab != tab || setting.section != section) {
                continue;
            }
            auto* control = new SettingControl(setting, store, this);
            control->setContentsMargins(indent, 0, 0, 0);
            column->addWidget(control);
            if (!setting.shownWhile.isEmpty()) {
                followToggle(*control, setting.shownWhile, store);
            }
        }
    }
    column->addStretch(1);
}

GeneralSettingsView::GeneralSettingsView(UserDefaults& store, QWidget* parent)
    : SettingsForm(u"General"_s, {u"Startup"_s, u"Saving"_s, u"Closing"_s}, store, parent)
{}

EditorSettingsView::EditorSettingsView(UserDefaults& store, QWidget* parent)
    : SettingsForm(u"Editor"_s, {u"Font"_s, u"Indentation"_s, u"Display"_s, u"Editing"_s}, store, parent)
{}

const QStringList& EditorSettingsView::fontFamilies()
{
    return settingOf(u"fontFamily"_s).choices;
}

} // namespace kelm
