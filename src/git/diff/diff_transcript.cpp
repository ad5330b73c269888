#include "git/diff/diff_transcript.h"

#include <QCoreApplication>

#include <algorithm>
#include <tuple>

namespace kelm {

using Side = SideBySideHunkLines::Side;

QString diffSign(DiffLineKind kind)
{
    switch (kind) {
    case DiffLineKind::added:
        return QStringLiteral("+");
    case DiffLineKind::removed:
        return QStringLiteral("-");
    case DiffLineKind::noNewline:
        return QStringLiteral("\\");
    case DiffLineKind::context:
    case DiffLineKind::hunkHeader:
    case DiffLineKind::fileHeader:
        break;
    }
    return QStringLiteral(" ");
}

QString spokenKind(DiffLineKind kind)
{
    switch (kind) {
    case DiffLineKind::added:
        return QCoreApplication::translate("DiffTranscript", "added: ");
    case DiffLineKind::removed:
        return QCoreApplication::translate("DiffTranscript", "removed: ");
    default:
        return {};
    }
}

DiffTranscript::DiffTranscript(const DiffLayout& layout)
{
    const QList<DiffFile>& files = layout.files();
    for (qsizetype file = 0; file < files.size(); ++file) {
        append({}, shownPath(files[file]), {file, -1, 0, 0}, Side::oldSide);
        for (qsizetype hunk = 0; hunk < files[file].hunks.size(); ++hunk) {
            append({}, files[file].hunks[hunk].header, {file, hunk, -1, 0}, Side::oldSide);
            const qsizetype entries = layout.isCollapsed(file, hunk) ? 0 : layout.entryCount(file, hunk);
            for (qsizetype entry = 0; entry < entries; ++entry) {
                const DiffLine* const oldLine = lineOn(Side::oldSide, layout, file, hunk, entry);
                const DiffLine* const newLine = lineOn(Side::newSide, layout, file, hunk, entry);
                if (oldLine != nullptr) {
                    append(spokenKind(oldLine->kind), oldLine->text, {file, hunk, entry, 0}, Side::oldSide);
                }
                if (newLine != nullptr && newLine != oldLine) {
                    append(spokenKind(newLine->kind), newLine->text, {file, hunk, entry, 0}, Side::newSide);
                }
            }
        }
    }
}

void DiffTranscript::append(const QString& kind, QStringView line, const DiffTextPlace& place, Side side)
{
    lines_.push_back({text_.size(), place, side, kind.size()});
    text_ += kind;
    text_ += line;
    text_ += u'\n';
}

const DiffTranscript::Line* DiffTranscript::lineAt(qsizetype offset) const
{
    const auto behind =
        std::partition_point(lines_.begin(), lines_.end(), [offset](const Line& line) { return line.start <= offset; });
    return behind == lines_.begin() ? nullptr : &*std::prev(behind);
}

DiffTextPlace DiffTranscript::placeOf(qsizetype offset) const
{
    const Line* const line = lineAt(offset);
    if (line == nullptr) {
        return {};
    }
    const Line* const next = line + 1;
    const qsizetype end = next < lines_.data() + lines_.size() ? next->start : text_.size();
    const qsizetype length = end - line->start - line->prefix - 1;
    DiffTextPlace place = line->place;
    place.unit = std::clamp<qsizetype>(offset - line->start - line->prefix, 0, length);
    return place;
}

std::optional<qsizetype> DiffTranscript::offsetOf(const DiffTextPlace& place, Side side) const
{
    const auto key = [](const DiffTextPlace& at) { return std::tuple(at.file, at.hunk, at.entry); };
    const auto first = std::partition_point(lines_.begin(), lines_.end(),
                                            [&](const Line& line) { return key(line.place) < key(place); });
    for (auto line = first; line != lines_.end() && key(line->place) == key(place); ++line) {
        const bool isOnlyOne = std::next(line) == lines_.end() || key(std::next(line)->place) != key(place);
        if (line->side == side || isOnlyOne) {
            return line->start + line->prefix + place.unit;
        }
    }
    return std::nullopt;
}

} // namespace kelm
