#include "platform/text/quoted_name.h"

#include "platform/files/native_path.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace kelm {

namespace {

std::optional<char> escapedLetter(char letter)
{
    constexpr std::string_view letters = "abfnrtv\\\"";
    constexpr std::string_view bytes = "\a\b\f\n\r\t\v\\\"";
    const std::size_t at = letters.find(letter);
    return at == std::string_view::npos ? std::nullopt : std::optional(bytes[at]);
}

bool isOctal(char digit)
{
    return digit >= '0' && digit <= '7';
}

/// The bytes that stand between quotes; absent where an escape is none of git's.
std::optional<QByteArray> unescaped(const QByteArray& quoted)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < quoted.size(); ++at) {
        if (quoted[at] != '\\') {
            bytes += quoted[at];
            continue;
        }
        if (at + 3 < quoted.size() && quoted[at + 1] >= '0' && quoted[at + 1] <= '3' && isOctal(quoted[at + 2]) &&
            isOctal(quoted[at + 3])) {
            bytes += char((quoted[at + 1] - '0') * 64 + (quoted[at + 2] - '0') * 8 + (quoted[at + 3] - '0'));
            at += 3;
            continue;
        }
        const auto letter = at + 1 < quoted.size() ? escapedLetter(quoted[at + 1]) : std::nullopt;
        if (!letter) {
            return std::nullopt;
        }
        bytes += *letter;
        ++at;
    }
    return bytes;
}

} // namespace

qsizetype quotedNameLength(QStringView path)
{
    if (!path.startsWith(u'"')) {
        return 0;
    }
    for (qsizetype at = 1; at < path.size(); ++at) {
        if (path[at] == u'\\') {
            ++at;
        } else if (path[at] == u'"') {
            return at + 1;
        }
    }
    return 0;
}

QString unquotedName(QStringView name)
{
    const qsizetype length = quotedNameLength(name);
    if (length == 0 || length != name.size()) {
        return name.toString();
    }
    const auto bytes = unescaped(nativePath(name.sliced(1, length - 2).toString()));
    return bytes ? pathOfNative(*bytes) : name.toString();
}

} // namespace kelm
