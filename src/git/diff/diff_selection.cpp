#include "git/diff/diff_selection.h"

#include "platform/text/quoted_name.h"
#include "platform/text/shown_name.h"

#include <QStringList>

#include <algorithm>

namespace kelm {

namespace {

/// The new name of a file whose name git has quoted, which the parser does not find; empty where there is none.
QString quotedPath(const DiffFile& file)
{
    constexpr QStringView mark = u" \"b/";
    for (const DiffLine& line : file.preamble) {
        const qsizetype start = line.text.indexOf(mark);
        const bool isNamed = line.text.startsWith(u"diff --git ") || line.text.startsWith(u"+++ ");
        const QStringView name = isNamed && start >= 0 ? QStringView(line.text).sliced(start + 1) : QStringView();
        if (!name.isEmpty() && quotedNameLength(name) == name.size()) {
            return unquotedName(name).sliced(2);
        }
    }
    return {};
}

} // namespace

QString shownPath(const DiffFile& file)
{
    const QString path = file.path.isEmpty() ? quotedPath(file) : file.path;
    return path.isEmpty() ? QStringLiteral("(diff)") : shownName(path);
}

const DiffLine* lineOn(SideBySideHunkLines::Side side, const DiffLayout& layout, qsizetype file, qsizetype hunk,
                       qsizetype entry)
{
    const SideBySideHunkLines::Pairing pairing = layout.lines(file, hunk, entry);
    const qint32 line = side == SideBySideHunkLines::Side::oldSide ? pairing.oldLine : pairing.newLine;
    return line < 0 ? nullptr : &layout.files()[file].hunks[hunk].lines[line];
}

DiffSelection wholeSelection(const DiffLayout& layout, SideBySideHunkLines::Side side)
{
    return {{0, -1, 0, 0}, {layout.files().size(), -1, 0, 0}, side};
}

std::optional<LineStretch> selectedStretch(const DiffSelection& selection, DiffTextPlace place, qsizetype length)
{
    const auto [first, last] = std::minmax(selection.anchor, selection.caret);
    DiffTextPlace start = place;
    DiffTextPlace end = place;
    start.unit = 0;
    end.unit = length;
    if (last < start || end < first || first == last) {
        return std::nullopt;
    }
    const qsizetype from = std::max(first, start).unit;
    return LineStretch{from, std::min(last, end).unit - from};
}

namespace {

qsizetype shownEntries(const DiffLayout& layout, qsizetype file, qsizetype hunk)
{
    return layout.isCollapsed(file, hunk) ? 0 : layout.entryCount(file, hunk);
}

/// The units of the text at a place, whatever its own unit. A place below the last file has none, and so has one in a
/// hunk of which no more than the header is shown.
qsizetype lengthAt(const DiffLayout& layout, const DiffTextPlace& place, SideBySideHunkLines::Side side)
{
    if (place.file >= layout.files().size()) {
        return 0;
    }
    if (place.hunk < 0) {
        return shownPath(layout.files()[place.file]).size();
    }
    if (place.entry >= shownEntries(layout, place.file, place.hunk)) {
        return 0;
    }
    const DiffLine* const line = lineOn(side, layout, place.file, place.hunk, place.entry);
    return line == nullptr ? 0 : line->text.size();
}

/// One step, to a line that may have nothing on the side that is looked at.
bool step(const DiffLayout& layout, DiffTextPlace& place, bool isBelow)
{
    const QList<DiffFile>& files = layout.files();
    if (isBelow && place.file >= files.size()) {
        return false;
    }
    const auto entries = [&](qsizetype hunk) { return shownEntries(layout, place.file, hunk); };
    place.unit = 0;
    place.entry += isBelow ? 1 : -1;
    if (place.hunk >= 0 && place.entry >= 0 && place.entry < entries(place.hunk)) {
        return true;
    }
    place.hunk += isBelow ? 1 : -1;
    if (!isBelow && place.hunk < -1) {
        if (--place.file < 0) {
            return false;
        }
        place.hunk = files[place.file].hunks.size() - 1;
    }
    for (; place.hunk >= 0 && place.hunk < files[place.file].hunks.size(); place.hunk += isBelow ? 1 : -1) {
        if (const qsizetype count = entries(place.hunk); count > 0) {
            place.entry = isBelow ? 0 : count - 1;
            return true;
        }
    }
    place.entry = 0;
    if (place.hunk < 0) {
        return true;
    }
    place = {place.file + 1, -1, 0, 0};
    return place.file < files.size();
}

} // namespace

std::optional<DiffTextPlace> neighbouringLine(const DiffLayout& layout, const DiffTextPlace& place,
                                              SideBySideHunkLines::Side side, bool isBelow)
{
    DiffTextPlace found = place;
    while (step(layout, found, isBelow)) {
        if (found.hunk < 0 || lineOn(side, layout, found.file, found.hunk, found.entry) != nullptr) {
            return found;
        }
    }
    return std::nullopt;
}

DiffSelection extendedByLine(const DiffLayout& layout, const DiffSelection& selection, bool isBelow)
{
    DiffSelection extended = selection;
    const auto next = neighbouringLine(layout, selection.caret, selection.side, isBelow);
    // The line itself first, where it has text to be selected.
    if (next && (!selection.isEmpty() || lengthAt(layout, selection.caret, selection.side) == 0)) {
        extended.caret = *next;
    }
    const auto key = [](const DiffTextPlace& place) { return std::tuple(place.file, place.hunk, place.entry); };
    const bool isForwards = key(extended.caret) == key(extended.anchor) ? isBelow || extended.anchor.unit == 0
                                                                        : key(extended.anchor) < key(extended.caret);
    DiffTextPlace& end = isForwards ? extended.caret : extended.anchor;
    DiffTextPlace& start = isForwards ? extended.anchor : extended.caret;
    start.unit = 0;
    end.unit = lengthAt(layout, end, selection.side);
    return extended;
}

QString selectedText(const DiffLayout& layout, const DiffSelection& selection)
{
    const auto [first, last] = std::minmax(selection.anchor, selection.caret);
    QStringList lines;
    const auto take = [&, &selection = selection](QStringView text, DiffTextPlace place) {
        if (const auto stretch = selectedStretch(selection, place, text.size())) {
            lines.append(text.sliced(stretch->start, stretch->length).toString());
        }
    };
    const QList<DiffFile>& files = layout.files();
    for (qsizetype file = first.file; file <= std::min(last.file, files.size() - 1); ++file) {
        take(shownPath(files[file]), {file, -1, 0, 0});
        const qsizetype lastHunk = file == last.file ? last.hunk : files[file].hunks.size() - 1;
        for (qsizetype hunk = file == first.file ? std::max<qsizetype>(first.hunk, 0) : 0; hunk <= lastHunk; ++hunk) {
            for (qsizetype entry = 0; entry < shownEntries(layout, file, hunk); ++entry) {
                if (const DiffLine* line = lineOn(selection.side, layout, file, hunk, entry)) {
                    take(line->text, {file, hunk, entry, 0});
                }
            }
        }
    }
    return lines.join(u'\n');
}

SideBySideHunkLines::Side sideOfHunk(const DiffLayout& layout, qsizetype file, qsizetype hunk)
{
    for (qsizetype entry = 0; entry < layout.entryCount(file, hunk); ++entry) {
        if (lineOn(SideBySideHunkLines::Side::newSide, layout, file, hunk, entry) != nullptr) {
            return SideBySideHunkLines::Side::newSide;
        }
    }
    return SideBySideHunkLines::Side::oldSide;
}

QString hunkText(const DiffLayout& layout, qsizetype file, qsizetype hunk)
{
    const SideBySideHunkLines::Side side = sideOfHunk(layout, file, hunk);
    QStringList lines;
    for (qsizetype entry = 0; entry < layout.entryCount(file, hunk); ++entry) {
        if (const DiffLine* line = lineOn(side, layout, file, hunk, entry)) {
            lines.append(line->text.toString());
        }
    }
    return lines.join(u'\n');
}

} // namespace kelm
