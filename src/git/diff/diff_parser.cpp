#include "git/diff/diff_parser.h"

#include "platform/text/decimal_integer.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <tuple>
#include <vector>

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
    QList<DiffFile> over(QStringView text)
    {
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
            lines_.push_back({DiffLineKind::noNewline, line.toString(), {}, {}});
            break;
        case u'+':
            lines_.push_back({DiffLineKind::added, line.sliced(1).toString(), {}, newLine_});
            advance(newLine_);
            break;
        case u'-':
            lines_.push_back({DiffLineKind::removed, line.sliced(1).toString(), oldLine_, {}});
            advance(oldLine_);
            break;
        default:
            lines_.push_back(
                {DiffLineKind::context, (first == u' ' ? line.sliced(1) : line).toString(), oldLine_, newLine_});
            advance(oldLine_);
            advance(newLine_);
        }
    }

    void addPreamble(QStringView line) { file_.preamble.append({DiffLineKind::fileHeader, line.toString(), {}, {}}); }

    void openHunk(QStringView line)
    {
        const Ranges ranges = parseHunkHeader(line);
        const QString header = line.toString();
        hunk_ = {QUuid(), header, ranges.oldStart, ranges.oldCount, ranges.newStart, ranges.newCount, {}};
        lines_.push_back({DiffLineKind::hunkHeader, header, {}, {}});
        oldLine_ = ranges.oldStart;
        newLine_ = ranges.newStart;
        isHunkOpen_ = true;
    }

    void closeHunk()
    {
        if (isHunkOpen_) {
            hunk_.id = QUuid::createUuid();
            hunk_.lines.reserve(static_cast<qsizetype>(lines_.size()));
            std::move(lines_.begin(), lines_.end(), std::back_inserter(hunk_.lines));
            lines_.clear();
            file_.hunks.append(std::move(hunk_));
            hunk_ = {};
            isHunkOpen_ = false;
        }
    }

    void flushFile()
    {
        if (!file_.preamble.isEmpty() || !file_.hunks.isEmpty()) {
            file_.id = QUuid::createUuid();
            files_.append(std::move(file_));
            file_ = {};
        }
    }

    QList<DiffFile> files_;
    DiffFile file_;
    DiffHunk hunk_;
    /// The open hunk's lines, in a buffer that serves one hunk after another.
    std::vector<DiffLine> lines_;
    bool isHunkOpen_ = false;
    qint64 oldLine_ = 0;
    qint64 newLine_ = 0;
};

QList<DiffFile> DiffParser::parse(QStringView text)
{
    if (text.isEmpty()) {
        return {};
    }
    return Pass().over(text);
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
