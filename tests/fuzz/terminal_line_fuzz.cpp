// What is typed and pasted at a terminal's prompt: what is run was in the text and holds nothing that cannot be seen,
// completion changes the last word alone, and paths keep their meaning.
#include "fuzz/require.h"
#include "run/pasted_lines.h"
#include "run/path_completion.h"
#include "run/path_names.h"

#include <cstdint>

namespace {

using namespace kelm;

void checkPasted(const QString& text)
{
    const std::optional<PastedLines> pasted = pastedLines(text);
    if (!pasted) {
        return;
    }
    require(!holdsSigns(text) && !pasted->commands.isEmpty());
    for (qsizetype index = 0; index < pasted->commands.size(); ++index) {
        const QString& command = pasted->commands[index];
        require(index + 1 == pasted->commands.size() || !command.contains(u'\n'));
        for (const QString& line : command.split(u'\n')) {
            require(text.contains(line));
        }
    }
    require(text.endsWith(pasted->rest));
}

void checkPath(const QString& path)
{
    const QString absolute = standardizedPath(u'/' + path);
    require(absolute.startsWith(u'/') && standardizedPath(absolute) == absolute);
    require(!absolute.contains(QStringLiteral("/../")) && !absolute.endsWith(QStringLiteral("/..")));
    const QString name = lastPathComponent(path);
    require(name == QStringLiteral("/") || !name.contains(u'/'));
    if (!name.isEmpty() && name != QStringLiteral("/")) {
        require(lastPathComponent(appendingPathComponent(absolute, name)) == name);
        require(deletingLastPathComponent(appendingPathComponent(absolute, name)) == absolute);
    }
    require(path.startsWith(u'~') || expandingTilde(path) == path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    checkPasted(text);
    checkPath(text);
    // A folder in which there is always something.
    const PathCompletion completion(text, QStringLiteral("/proc/self"));
    const QString before = text.left(text.lastIndexOf(u' ') + 1);
    for (const QString& name : completion.names()) {
        const QString line = completion.lineWith(name);
        require(line.startsWith(before) && line.endsWith(name));
    }
    return 0;
}
