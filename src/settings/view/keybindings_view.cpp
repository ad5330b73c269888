#include "settings/view/keybindings_view.h"

#include "platform/style/view/style.h"
#include "platform/text/platform_words.h"
#include "platform/view/accessible_role.h"
#include "platform/view/focus_ring.h"
#include "platform/view/labels.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

const std::vector<KeybindingSection>& keybindingSections()
{
    static const std::vector<KeybindingSection> sections{
        {u"File"_s,
         {{u"New File"_s, u"⌘N"_s}, {u"Open File"_s, u"⌘O"_s}, {u"Save"_s, u"⌘S"_s}, {u"Save As"_s, u"⇧⌘S"_s}}},
        {u"Edit"_s,
         {{u"Undo"_s, u"⌘Z"_s},
          {u"Redo"_s, u"⇧⌘Z"_s},
          {u"Find"_s, u"⌘F"_s},
          {u"Find and Replace"_s, u"⌘H"_s},
          {u"Toggle Comment"_s, u"⌘/"_s}}},
        {u"View"_s,
         {{u"Toggle Sidebar"_s, u"⌘B"_s},
          {u"Toggle Terminal"_s, u"⌃`"_s},
          {u"Toggle Minimap"_s, u"⇧⌘M"_s},
          {u"Quick Open"_s, u"⌘P"_s},
          {u"Go to Line"_s, u"⌘G"_s}}},
        {u"Run"_s, {{u"Run File"_s, u"⌘R"_s}, {u"Stop"_s, u"⌘."_s}}},
        {u"Format"_s, {{u"Format JSON"_s, u"⇧⌘J"_s}, {u"Format XML"_s, u"⇧⌘X"_s}}},
    };
    return sections;
}

KeybindingsView::KeybindingsView(QWidget* parent) : QWidget(parent)
{
    constexpr int margin = 28;
    constexpr int keySize = 12;
    auto* list = new QWidget;
    auto* column = new QVBoxLayout(list);
    column->setContentsMargins(margin, margin - 8, margin, margin);
    column->setSpacing(7);
    for (const KeybindingSection& section : keybindingSections()) {
        if (column->count() > 0) {
            column->addSpacing(10);
        }
        column->addWidget(new TextLabel(section.title, style::headlineFont(), Tint::primary(), list));
        for (const KeybindingRow& row : section.rows) {
            auto* line = new QHBoxLayout;
            line->setContentsMargins(12, 0, 0, 0);
            line->addWidget(
                new TextLabel(row.action, style::interfaceFont(style::typeSize::body), Tint::primary(), list));
            line->addStretch(1);
            line->addWidget(
                new TextLabel(inPlatformWords(row.shortcut), style::monospaced(keySize), Tint::secondary(), list));
            column->addLayout(line);
        }
    }
    auto* area = new QScrollArea(this);
    setAccessibleRole(*area, QAccessible::Grouping);
    area->setAccessibleName(tr("Keyboard shortcuts"));
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(list);
    area->viewport()->setAutoFillBackground(false);
    // It has no control, and is scrolled by keys.
    new FocusRing(*area);
    list->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
}

} // namespace kelm
