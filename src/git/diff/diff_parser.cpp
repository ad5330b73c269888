#include "git/diff/diff_parser.h"

#include "platform/text/decimal_integer.h"

#include <algorithm>
#include <array>
#include <limits>
#include <tuple>
#include <utility>

namespace kelm {

namespace {

constexpr QStringView fileStart = u"diff --git ";
constexpr QStringView newPathMark = u" b/";
constexpr QStringView newFileLine = u"+++ b/";
constexpr QStringView hunkMark = u"@@";

constexpr std::array<QStringView, 11> headerStarts{
    u"index ",    u"new file mode", u"deleted file mode", u"similarity index", u"rename from", u"rename to",
    u"copy from", u"copy to",       u"old mode",          u"new mode",         u"Binary files"};

bool isHeader(QStringView line)
{
    return std::any_of(headerStarts.begin(), headerStarts.end(),
                       [line](QStringView start) { return line.startsWith(start); });
}

/// The next line number. A header may give any number there is; the last one stays.
void advance(qint64& number)
{
    if (number < std::numeric_limits<qint64>::max()) {
        ++number;
    }
}

} // namespace

/// The state of one parse.
class DiffParser::Pass
{
public:
    explicit Pass(const QString& source) : source_(source) {}

    QList<DiffFile> over()
    {
        const QStringView text = source_;
        qsizetype start = 0;
        while (start >= 0) {
            const qsizetype end = text.indexOf(u'\n', start);
            take(end < 0 ? text.sliced(start) : text.sliced(start, end - start));
            start = end < 0 ? -1 : end + 1;
        }
        closeHunk();
        flushFile();
        return std::move(files_);
    }

private:
    void take(QStringView line)
    {
        // Most lines of a diff are those of a hunk, and what may be a header begins with none of their signs alone.
        const char16_t first = line.isEmpty() ? u'\0' : line.front().unicode();
        const bool isPlainBody = first == u' ' || (first == u'+' && !line.startsWith(u"+++ ")) ||
                                 (first == u'-' && !line.startsWith(u"--- "));
        if (!isPlainBody && takeHeader(line)) {
            return;
        }
        if (isHunkOpen_) {
            takeBody(line, first);
        }
    }

    bool takeHeader(QStringView line)
    {
        if (line.startsWith(fileStart)) {
            closeHunk();
            flushFile();
            addPreamble(line);
            if (const qsizetype mark = line.indexOf(newPathMark); mark >= 0) {
                file_.path = line.sliced(mark + newPathMark.size()).toString();
            }
            return true;
        }
        const bool namesFile = line.startsWith(u"--- ") || line.startsWith(u"+++ ");
        if (namesFile || isHeader(line)) {
            closeHunk();
            addPreamble(line);
            if (file_.path.isEmpty() && line.startsWith(newFileLine)) {
                file_.path = line.sliced(newFileLine.size()).toString();
            }
            return true;
        }
        if (line.startsWith(hunkMark)) {
            closeHunk();
            openHunk(line);
            return true;
        }
        return false;
    }

    void takeBody(QStringView line, char16_t first)
    {
        switch (first) {
        case u'\\':
            lines_.append({DiffLineKind::noNewline, line, {}, {}});
            break;
        case u'+':
            lines_.append({DiffLineKind::added, line.sliced(1), {}, newLine_});
            advance(newLine_);
            break;
        case u'-':
            lines_.append({DiffLineKind::removed, line.sliced(1), oldLine_, {}});
            advance(oldLine_);
            break;
        default:
            lines_.append({DiffLineKind::context, first == u' ' ? line.sliced(1) : line, oldLine_, newLine_});
            advance(oldLine_);
            advance(newLine_);
        }
    }

    void addPreamble(QStringView line) { file_.preamble.append({DiffLineKind::fileHeader, line, {}, {}}); }

    void openHunk(QStringView line)
    {
        const Ranges ranges = parseHunkHeader(line);
        hunk_ = {QUuid(), line.toString(), ranges.oldStart, ranges.oldCount, ranges.newStart, ranges.newCount,
                 {},      source_};
        lines_.append({DiffLineKind::hunkHeader, line, {}, {}});
        oldLine_ = std::max(ranges.oldStart, DiffLineNumber::lowest);
        newLine_ = std::max(ranges.newStart, DiffLineNumber::lowest);
        isHunkOpen_ = true;
    }

    void closeHunk()
    {
        if (isHunkOpen_) {
            hunk_.id = QUuid::createUuid();
            takeLines();
            file_.hunks.append(std::move(hunk_));
            hunk_ = {};
            isHunkOpen_ = false;
        }
    }

    /// Gives the hunk its lines.
    void takeLines()
    {
        constexpr qsizetype many = 4096;
        if (lines_.size() < many) {
            hunk_.lines = QList<DiffLine>(lines_.cbegin(), lines_.cend());
            lines_.clear();
        } else {
            // What a long list has room for beyond its end was never touched and costs nothing; a copy of the right
            // length would, for a moment, as much as all its lines.
            hunk_.lines = std::exchange(lines_, {});
        }
    }

    void flushFile()
    {
        if (!file_.preamble.isEmpty() || !file_.hunks.isEmpty()) {
            file_.id = QUuid::createUuid();
            file_.source = source_;
            files_.append(std::move(file_));
            file_ = {};
        }
    }

    const QString& source_;
    QList<DiffFile> files_;
    DiffFile file_;
    DiffHunk hunk_;
    /// The open hunk's lines, in a buffer that serves one hunk after another.
    QList<DiffLine> lines_;
    bool isHunkOpen_ = false;
    qint64 oldLine_ = 0;
    qint64 newLine_ = 0;
};

QList<DiffFile> DiffParser::parse(const QString& text)
{
    if (text.isEmpty()) {
        return {};
    }
    return Pass(text).over();
}

DiffParser::Ranges DiffParser::parseHunkHeader(QStringView line)
{
    const qsizetype opening = line.indexOf(hunkMark);
    const qsizetype start = opening + hunkMark.size();
    const qsizetype end = opening < 0 ? -1 : line.indexOf(hunkMark, start);
    if (end < 0) {
        return {};
    }
    QStringView between = line.sliced(start, end - start);
    const auto isBlank = [](QChar unit) { return unit == u' ' || unit == u'\t'; };
    while (!between.isEmpty() && isBlank(between.front())) {
        between = between.sliced(1);
    }
    while (!between.isEmpty() && isBlank(between.back())) {
        between.chop(1);
    }
    Ranges ranges{0, 1, 0, 1};
    for (const QStringView piece : between.tokenize(u' ', Qt::SkipEmptyParts)) {
        if (piece.startsWith(u'-')) {
            std::tie(ranges.oldStart, ranges.oldCount) = parseRange(piece.sliced(1));
        } else if (piece.startsWith(u'+')) {
            std::tie(ranges.newStart, ranges.newCount) = parseRange(piece.sliced(1));
        }
    }
    return ranges;
}

std::pair<qint64, qint64> DiffParser::parseRange(QStringView range)
{
    const QList<QStringView> pieces = range.split(u',', Qt::SkipEmptyParts);
    return {pieces.isEmpty() ? 0 : decimalInteger(pieces[0]).value_or(0),
            pieces.size() < 2 ? 1 : decimalInteger(pieces[1]).value_or(1)};
}

} // namespace kelm
