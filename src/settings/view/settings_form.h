// A tab of settings in sections.
#pragma once

#include "platform/files/user_defaults.h"

#include <QStringList>
#include <QWidget>

namespace kelm {

/// The settings of one tab of the table, under the headings of `sections`, in that order.
class SettingsForm : public QWidget
{
    Q_OBJECT

public:
    SettingsForm(const QString& tab, const QStringList& sections, UserDefaults& store, QWidget* parent = nullptr);
};

/// Start, saving and closing.
class GeneralSettingsView final : public SettingsForm
{
    Q_OBJECT

public:
    explicit GeneralSettingsView(UserDefaults& store, QWidget* parent = nullptr);
};

/// Font, indentation, what is shown, and editing.
class EditorSettingsView final : public SettingsForm
{
    Q_OBJECT

public:
    explicit EditorSettingsView(UserDefaults& store, QWidget* parent = nullptr);

    /// The families that can be chosen, in their order.
    static const QStringList& fontFamilies();
};

} // namespace kelm
