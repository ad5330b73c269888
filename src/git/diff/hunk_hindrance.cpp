#include "git/diff/hunk_hindrance.h"

#include "git/diff/combined_hunk.h"
#include "git/diff/file_facts.h"

#include <QCoreApplication>

#include <algorithm>

namespace kelm {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("HunkHindrance", text);
}

/// The lines of a hunk by what they count for.
struct Tally
{
    qint64 oldLines = 0;
    qint64 newLines = 0;
    /// Whether a line without newline stands before the hunk's end.
    bool isMarkedWithin = false;
    /// The kind of the last line, when it has no newline.
    std::optional<DiffLineKind> unended;
};

Tally tallyOf(const DiffHunk& hunk)
{
    Tally tally;
    DiffLineKind last = DiffLineKind::hunkHeader;
    for (const DiffLine& line : hunk.lines) {
        if (line.kind == DiffLineKind::hunkHeader || isBehindTheText(hunk, line)) {
            continue;
        }
        if (line.kind == DiffLineKind::noNewline) {
            tally.unended = last;
            continue;
        }
        tally.isMarkedWithin |= tally.unended.has_value();
        tally.oldLines += line.kind == DiffLineKind::added ? 0 : 1;
        tally.newLines += line.kind == DiffLineKind::removed ? 0 : 1;
        last = line.kind;
    }
    return tally;
}

/// Whether lines of any hunk stand among those that name the two versions, and so in the patch of each hunk.
bool namesMoreFiles(const DiffFile& file)
{
    constexpr int versions = 2;
    return std::count_if(file.preamble.begin(), file.preamble.end(), [](const DiffLine& line) {
               return line.text.startsWith(u"--- ") || line.text.startsWith(u"+++ ");
           }) > versions;
}

} // namespace

HunkHindrance HunkHindrance::of(const DiffFile& file, qsizetype hunk, bool isReversed)
{
    const DiffHunk& shown = file.hunks[hunk];
    if (isCombined(shown)) {
        return {tr("The file is in conflict. Resolve it and stage it as a whole."), {}};
    }
    const DiffFileFacts facts = DiffFileFacts::of(file);
    if (facts.origin == DiffFileFacts::Origin::copy) {
        return {tr("A hunk of a copied file cannot be taken alone."), {}};
    }
    if (facts.newCommit.contains(u'-')) {
        return {tr("The submodule has changes of its own. Commit them in it first."), {}};
    }
    const Tally tally = tallyOf(shown);
    if (tally.oldLines < shown.oldCount || tally.newLines < shown.newCount || namesMoreFiles(file)) {
        return {
            tr("A changed line begins with “-- ” or “++ ” and reads like the header of a file, so the hunk cannot be "
               "taken alone."),
            {}};
    }
    const DiffLineKind made = isReversed ? DiffLineKind::removed : DiffLineKind::added;
    if (tally.isMarkedWithin || (tally.unended && *tally.unended != made)) {
        return {tr("The last line of the file has no newline, so this hunk cannot be taken alone."), {}};
    }
    if (tally.unended) {
        return {{}, tr("The last line is taken with a newline, which it does not have in the file.")};
    }
    return {};
}

} // namespace kelm
