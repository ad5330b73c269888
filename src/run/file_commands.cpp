#include "run/file_commands.h"

#include "platform/files/file_url.h"

namespace kelm {

namespace {

/// How a file is run: the line is the head, the file's path and the tail.
struct FileCommand
{
    QStringView extension;
    QStringView head;
    QStringView tail;
};

constexpr FileCommand fileCommands[] = {
    {u"py", u"python3 \"", u"\""},
    {u"js", u"node \"", u"\""},
    {u"sh", u"bash \"", u"\""},
    {u"rb", u"ruby \"", u"\""},
    {u"swift", u"swift \"", u"\""},
    {u"go", u"go run \"", u"\""},
    {u"rs", u"rustc \"", u"\" -o /tmp/rust_out && /tmp/rust_out"},
};

} // namespace

std::optional<QString> shellLineFor(const QUrl& file)
{
    const QString extension = pathExtension(file).toLower();
    for (const FileCommand& command : fileCommands) {
        if (command.extension == extension) {
            return command.head.toString() + filePath(file) + command.tail.toString();
        }
    }
    return std::nullopt;
}

} // namespace kelm
