// Commands of the menu that write the whole text anew.
#include "editor/transforms/json_formatter.h"
#include "editor/transforms/text_transformer.h"
#include "editor/transforms/xml_formatter.h"
#include "soak/action.h"
#include "soak/editing.h"
#include "workbench/view/menu_bar.h"

#include <QMenuBar>

namespace kelm::soak {

namespace {

constexpr qsizetype longestRewritten = 20000;

struct TextCommand
{
    Command command;
    QString (*transform)(const QString& text);
};

const std::vector<TextCommand>& commands()
{
    static const std::vector<TextCommand> table{
        {Command::formatJson, [](const QString& text) { return JSONFormatter::format(text, 2); }},
        {Command::formatXml, [](const QString& text) { return formatXml(text); }},
        {Command::sortLinesAscending, [](const QString& text) { return TextTransformer::sortLines(text, true); }},
        {Command::sortLinesDescending, [](const QString& text) { return TextTransformer::sortLines(text, false); }},
        {Command::toUpperCase, TextTransformer::toUpperCase},
        {Command::toLowerCase, TextTransformer::toLowerCase},
        {Command::toTitleCase, TextTransformer::toCapitalized},
        {Command::toCamelCase, TextTransformer::toCamelCase},
        {Command::toSnakeCase, TextTransformer::toSnakeCase},
    };
    return table;
}

bool hasShortText(World& world)
{
    return world.editor() != nullptr && world.tabs.current()->text().size() < longestRewritten;
}

void transform(World& world)
{
    const TextCommand& command = world.chance.pick(commands());
    QAction* const action = menuAction(*world.window.menuBar(), command.command);
    world.note(action->text());
    const Before before = beforeEdit(world);
    action->trigger();
    expectEdited(world, before, command.transform(before.text));
}

} // namespace

std::vector<Action> commandActions()
{
    return {{"write the text anew", 5, hasShortText, transform}};
}

} // namespace kelm::soak
