// Writing one hunk of a diff back as a patch.
#include "git/diff/diff.h"

#include <QStringList>

#include <array>

namespace kelm {

namespace {

constexpr QStringView patchedFileStart = u"diff --git ";

/// The header lines that a patch keeps; `git apply` needs no other for one hunk.
constexpr std::array<QStringView, 7> keptStarts{patchedFileStart,     u"index ", u"--- ", u"+++ ", u"new file mode",
                                                u"deleted file mode", u"rename "};

QStringList headerLines(const DiffFile& file)
{
    QStringList kept;
    bool namesFile = false;
    for (const DiffLine& line : file.preamble) {
        const auto start = std::find_if(keptStarts.begin(), keptStarts.end(),
                                        [&line](QStringView text) { return line.text.startsWith(text); });
        if (start != keptStarts.end()) {
            kept.append(line.text.toString());
            namesFile |= *start == patchedFileStart;
        }
    }
    if (namesFile) {
        return kept;
    }
    return {QStringLiteral("diff --git a/%1 b/%1").arg(file.path), QStringLiteral("--- a/") + file.path,
            QStringLiteral("+++ b/") + file.path};
}

/// The sign before a line of this kind; none for the kinds that no hunk body holds.
std::optional<QChar> sign(DiffLineKind kind)
{
    switch (kind) {
    case DiffLineKind::added:
        return u'+';
    case DiffLineKind::removed:
        return u'-';
    case DiffLineKind::context:
        return u' ';
    case DiffLineKind::noNewline:
        return u'\\';
    case DiffLineKind::hunkHeader:
    case DiffLineKind::fileHeader:
        break;
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> DiffFile::patch(qsizetype index) const
{
    if (index < 0 || index >= hunks.size()) {
        return std::nullopt;
    }
    const DiffHunk& hunk = hunks[index];
    QString text = headerLines(*this).join(u'\n') + u'\n' + hunk.header + u'\n';
    for (const DiffLine& line : hunk.lines) {
        if (const auto prefix = sign(line.kind)) {
            text += *prefix;
            text += line.text;
            text += u'\n';
        }
    }
    return text;
}

} // namespace kelm
