#include "app/command_line/operands.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QUrl>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

bool isDigit(QChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

/// Whether `text` can be a scheme (RFC 3986, section 3.1).
bool isScheme(QStringView text)
{
    const auto isLetter = [](QChar unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); };
    const auto isSchemeUnit = [&](QChar unit) {
        return isLetter(unit) || isDigit(unit) || unit == u'+' || unit == u'-' || unit == u'.';
    };
    return !text.isEmpty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isSchemeUnit);
}

bool isURLText(QStringView operand)
{
    const QStringView scheme = operand.first(std::max(operand.indexOf(u':'), qsizetype(0)));
    return isScheme(scheme) && operand.sliced(scheme.size()).startsWith(u"://");
}

/// A lesson link begins so, also one that is none for the lack of two slashes.
constexpr QStringView lessonScheme = u"kelmpane:";

/// Where ".." leads from there: behind a symbolic link up from the folder that it leads to, as everywhere in the
/// system.
std::filesystem::path folderAbove(const std::filesystem::path& path)
{
    std::error_code error;
    if (std::filesystem::is_symlink(path, error)) {
        const std::filesystem::path behind = std::filesystem::canonical(path, error);
        if (!error) {
            return behind.parent_path();
        }
    }
    return path.parent_path();
}

/// Without ".", ".." and empty names.
QString absolutePath(QStringView path, const QString& workingDirectory)
{
    const QString whole = path.startsWith(u'/') ? path.toString() : workingDirectory + u'/' + path.toString();
    std::filesystem::path clean = "/";
    for (const QStringView name : QStringView(whole).split(u'/', Qt::SkipEmptyParts)) {
        if (name == u"..") {
            clean = folderAbove(clean);
        } else if (name != u".") {
            clean /= nativePath(name.toString()).toStdString();
        }
    }
    return pathOfNative(QByteArray::fromStdString(clean.native()));
}

QString fileURLText(const QString& path)
{
    return urlOfFile(isFolder(path) && !path.endsWith(u'/') ? path + u'/' : path).toString(QUrl::FullyEncoded);
}

/// Takes a number and the colon before it off the end of a path that goes on to be a name.
std::optional<quint32> takeNumber(QStringView& path)
{
    const qsizetype colon = path.lastIndexOf(u':');
    const std::optional<quint32> number = colon > 0 ? placeNumber(path.sliced(colon + 1)) : std::nullopt;
    if (number && path[colon - 1] != u'/') {
        path = path.first(colon);
        return number;
    }
    return std::nullopt;
}

} // namespace

std::optional<quint32> placeNumber(QStringView digits)
{
    if (digits.isEmpty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        return std::nullopt;
    }
    constexpr quint64 largest = std::numeric_limits<qint32>::max();
    quint64 number = 0;
    for (const QChar digit : digits) {
        number = std::min(number * 10 + (digit.unicode() - u'0'), largest);
    }
    return quint32(std::max<quint64>(number, 1));
}

openRequest::Item itemOfOperand(const QString& operand, const QString& workingDirectory)
{
    const auto item = [&](QStringView path, quint32 line, quint32 column) {
        return openRequest::Item(fileURLText(absolutePath(path, workingDirectory)), line, column);
    };
    const auto names = [&](QStringView path) { return isThere(absolutePath(path, workingDirectory)); };
    if (isURLText(operand) || (operand.startsWith(lessonScheme) && !names(operand))) {
        return {operand};
    }
    if (names(operand)) {
        return item(operand, 0, 0);
    }
    QStringView path = operand;
    if (path.size() > 1 && path.endsWith(u':') && isDigit(path[path.size() - 2])) {
        path.chop(1);
    }
    const std::optional<quint32> last = takeNumber(path);
    if (!last) {
        return item(operand, 0, 0);
    }
    if (names(path)) {
        return item(path, *last, 0);
    }
    if (const std::optional<quint32> line = takeNumber(path)) {
        return item(path, *line, *last);
    }
    return item(path, *last, 0);
}

QString operandOf(const openRequest::Item& item)
{
    const QUrl url(item.text);
    // A folder has no lines, and its slash would part it from one.
    if (item.line == 0 || !url.isLocalFile() || item.text.endsWith(u'/')) {
        return item.text;
    }
    // All at once: a name may hold a "%2" of its own.
    return u"%1:%2:%3"_s.arg(filePath(url), QString::number(item.line),
                             QString::number(std::max<quint32>(item.column, 1)));
}

} // namespace kelm
