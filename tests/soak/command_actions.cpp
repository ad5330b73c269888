// Commands of the menu that write the whole text anew.
#include "editor/transforms/json_formatter.h"
#include "editor/transforms/text_transformer.h"
#include "editor/transforms/xml_formatter.h"
#include "soak/action.h"
#include "soak/editing.h"

#include <QMenuBar>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype longestText = 20000;

struct Command
{
    QString label;
    QString (*transform)(const QString& text);
};

const std::vector<Command>& commands()
{
    static const std::vector<Command> table{
        {u"Format JSON"_s, [](const QString& text) { return JSONFormatter::format(text, 2); }},
        {u"Format XML"_s, [](const QString& text) { return formatXml(text); }},
        {u"Sort Lines Ascending"_s, [](const QString& text) { return TextTransformer::sortLines(text, true); }},
        {u"Sort Lines Descending"_s, [](const QString& text) { return TextTransformer::sortLines(text, false); }},
        {u"UPPERCASE"_s, TextTransformer::toUpperCase},
        {u"lowercase"_s, TextTransformer::toLowerCase},
        {u"Title Case"_s, TextTransformer::toCapitalized},
        {u"camelCase"_s, TextTransformer::toCamelCase},
        {u"snake_case"_s, TextTransformer::toSnakeCase},
    };
    return table;
}

bool hasShortText(World& world)
{
    return world.editor() != nullptr && world.tabs.current()->text().size() < longestText;
}

void transform(World& world)
{
    const Command& command = world.chance.pick(commands());
    world.note(command.label);
    const Before before = beforeEdit(world);
    for (QAction* action : world.window.menuBar()->findChildren<QAction*>()) {
        if (action->text() == command.label && action->menu() == nullptr) {
            action->trigger();
        }
    }
    expectEdited(world, before, command.transform(before.text));
}

} // namespace

std::vector<Action> commandActions()
{
    return {{"write the text anew", 5, hasShortText, transform}};
}

} // namespace kelm::soak
