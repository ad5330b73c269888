#include "run/pasted_lines.h"

#include "platform/text/character_sets.h"

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

bool isSign(QChar character)
{
    if (character == u'\t' || isNewline(character.unicode())) {
        return false;
    }
    switch (character.direction()) {
    case QChar::DirLRE:
    case QChar::DirRLE:
    case QChar::DirLRO:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI:
        return true;
    default:
        return character.category() == QChar::Other_Control;
    }
}

/// The lines with what follows the last line end behind them, which may be empty.
QStringList linesOf(QStringView text)
{
    QString plain = text.toString();
    plain.replace(u"\r\n"_s, u"\n"_s);
    QStringList lines;
    for (const QStringView line : split(plain, isNewline)) {
        lines.append(line.toString());
    }
    return lines;
}

/// Whether a line does not stand for itself: it is indented, begins or goes on with what more lines belong to, or a
/// quote or a sign at its end leaves it open.
bool belongsToOthers(QStringView line)
{
    static constexpr QStringView openEnds[] = {u"\\", u"|", u"&&", u"||", u"{", u"("};
    static constexpr QStringView words[] = {u"for",      u"while", u"until", u"if",   u"case", u"select",
                                            u"function", u"do",    u"then",  u"else", u"elif", u"done",
                                            u"fi",       u"esac",  u"}",     u")"};
    const QStringView command = trimmed(line, isWhitespace);
    if (command.isEmpty() || command.startsWith(u'#')) {
        return false;
    }
    const QStringView first = split(command, [](char16_t unit) { return isWhitespace(unit) || unit == u';'; }).front();
    return isWhitespace(line.front().unicode()) || line.contains(u"<<") || line.count(u'\'') % 2 != 0 ||
           line.count(u'"') % 2 != 0 || std::find(std::begin(words), std::end(words), first) != std::end(words) ||
           std::any_of(std::begin(openEnds), std::end(openEnds),
                       [command](QStringView end) { return command.endsWith(end); });
}

/// How far all lines are indented alike that hold anything.
qsizetype sharedIndentation(const QStringList& lines)
{
    std::optional<QStringView> shared;
    for (const QStringView line : lines) {
        const auto end =
            std::find_if_not(line.begin(), line.end(), [](QChar unit) { return isWhitespace(unit.unicode()); });
        if (end == line.end()) {
            continue;
        }
        const QStringView own = line.first(end - line.begin());
        const qsizetype most = shared ? std::min(shared->size(), own.size()) : own.size();
        const QStringView other = shared.value_or(own);
        shared = own.first(std::mismatch(own.begin(), own.begin() + most, other.begin()).first - own.begin());
    }
    return shared ? shared->size() : 0;
}

} // namespace

bool holdsSigns(QStringView text)
{
    return std::any_of(text.begin(), text.end(), isSign);
}

std::optional<PastedLines> pastedLines(QStringView text)
{
    QStringList lines = linesOf(text);
    if (lines.size() < 2 || holdsSigns(text)) {
        return std::nullopt;
    }
    const qsizetype indentation = sharedIndentation(lines);
    for (QString& line : lines) {
        line.remove(0, indentation);
    }
    const auto open = std::find_if(lines.begin(), lines.end(), belongsToOthers);
    const QString rest = lines.last();
    if (open == lines.end()) {
        lines.removeLast();
        return PastedLines{lines, rest};
    }
    if (!rest.isEmpty()) {
        return std::nullopt;
    }
    // What stands before is run by itself, since it may be for the terminal and not for a shell.
    PastedLines pasted{QStringList(lines.begin(), open), {}};
    pasted.commands.append(QStringList(open, lines.end() - 1).join(u'\n'));
    return pasted;
}

} // namespace kelm
