// The list of keys.
#pragma once

#include <QString>
#include <QWidget>

#include <vector>

namespace kelm {

/// One line of the list.
struct KeybindingRow
{
    QString action;
    QString shortcut;
};

/// A heading with its lines.
struct KeybindingSection
{
    QString title;
    std::vector<KeybindingRow> rows;
};

/// What the list shows. The lines are constants: they say what the menus' keys are, and change with no table.
const std::vector<KeybindingSection>& keybindingSections();

/// A list to read, which changes nothing.
class KeybindingsView final : public QWidget
{
    Q_OBJECT

public:
    explicit KeybindingsView(QWidget* parent = nullptr);
};

} // namespace kelm
