#include "git/diff/file_facts.h"

#include "git/diff/diff_content.h"
#include "platform/text/quoted_name.h"
#include "platform/text/shown_name.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelm {

namespace {

constexpr QStringView commitLine = u"Subproject commit ";
constexpr qsizetype shortCommit = 7;

QString tr(const char* text)
{
    return QCoreApplication::translate("DiffFileFacts", text);
}

/// The name of a content, or nothing for the one that stands for no file.
QString contentName(QStringView name)
{
    const bool isNone = std::all_of(name.begin(), name.end(), [](QChar digit) { return digit == u'0'; });
    return isNone ? QString() : name.toString();
}

void takeContents(DiffFileFacts& facts, QStringView line)
{
    const QStringView names =
        line.first(std::max<qsizetype>(0, line.indexOf(u' ') < 0 ? line.size() : line.indexOf(u' ')));
    const qsizetype dots = names.indexOf(u"..");
    if (dots >= 0 && !names.contains(u',')) {
        facts.oldContent = contentName(names.first(dots));
        facts.newContent = contentName(names.sliced(dots + 2));
    }
}

void takeHeader(DiffFileFacts& facts, QStringView line)
{
    const auto rest = [line](QStringView start) -> std::optional<QStringView> {
        return line.startsWith(start) ? std::optional(line.sliced(start.size())) : std::nullopt;
    };
    if (const auto names = rest(u"index ")) {
        takeContents(facts, *names);
    } else if (const auto mode = rest(u"old mode ")) {
        facts.oldMode = mode->toString();
    } else if (const auto changedMode = rest(u"new mode ")) {
        facts.newMode = changedMode->toString();
    } else if (const auto share = rest(u"similarity index ")) {
        facts.similarity = share->toString();
    } else if (const auto path = rest(u"rename from ")) {
        facts.origin = DiffFileFacts::Origin::rename;
        facts.oldPath = unquotedName(*path);
    } else if (const auto original = rest(u"copy from ")) {
        facts.origin = DiffFileFacts::Origin::copy;
        facts.oldPath = unquotedName(*original);
    } else {
        facts.isNew |= line.startsWith(u"new file mode");
        facts.isDeleted |= line.startsWith(u"deleted file mode");
        facts.isBinary |= line.startsWith(u"Binary files ");
    }
}

void takeCommits(DiffFileFacts& facts, const DiffFile& file)
{
    // There is one hunk of at most two lines, so another file costs a look at its first ones.
    constexpr qsizetype most = 5;
    if (file.hunks.size() != 1 || file.hunks.front().lines.size() > most) {
        return;
    }
    for (const DiffLine& line : file.hunks.front().lines) {
        if (line.text.startsWith(commitLine)) {
            const QString commit = line.text.sliced(commitLine.size()).toString();
            (line.kind == DiffLineKind::removed ? facts.oldCommit : facts.newCommit) = commit;
        }
    }
}

QString shortened(const QString& commit)
{
    // Behind the name may stand that the inner repository has changes of its own.
    const qsizetype dash = commit.indexOf(u'-');
    return commit.left(shortCommit) + (dash < 0 ? QString() : commit.sliced(dash));
}

QString binaryInWords(const DiffFileFacts& facts, const DiffFileSizes& sizes)
{
    QString words = facts.isNew       ? tr("New binary file")
                    : facts.isDeleted ? tr("Deleted binary file")
                                      : tr("Binary file");
    if (sizes.oldSize && sizes.newSize) {
        words += QStringLiteral(", %1 → %2").arg(sizeInWords(*sizes.oldSize), sizeInWords(*sizes.newSize));
    } else if (sizes.oldSize || sizes.newSize) {
        words += QStringLiteral(", ") + sizeInWords(sizes.oldSize ? *sizes.oldSize : *sizes.newSize);
    }
    return words;
}

} // namespace

DiffFileFacts DiffFileFacts::of(const DiffFile& file)
{
    DiffFileFacts facts;
    for (const DiffLine& line : file.preamble) {
        takeHeader(facts, line.text);
    }
    takeCommits(facts, file);
    return facts;
}

QString DiffFileFacts::inWords(const DiffFileSizes& sizes) const
{
    QStringList words;
    if (!oldCommit.isEmpty() || !newCommit.isEmpty()) {
        const bool isBoth = !oldCommit.isEmpty() && !newCommit.isEmpty();
        words.append(
            tr("Submodule %1")
                .arg(shortened(oldCommit) + (isBoth ? QStringLiteral(" → ") : QString()) + shortened(newCommit)));
    }
    if (isBinary) {
        words.append(binaryInWords(*this, sizes));
    }
    if (origin != Origin::itself) {
        QString text =
            (origin == Origin::rename ? tr("Renamed from %1") : tr("Copied from %1")).arg(shownName(oldPath));
        if (similarity.endsWith(u'%')) {
            text += tr(", %1 % alike").arg(similarity.chopped(1));
        }
        words.append(text);
    }
    if (!oldMode.isEmpty() || !newMode.isEmpty()) {
        words.append(tr("Mode %1 → %2").arg(oldMode, newMode));
    }
    return words.join(QStringLiteral(" · "));
}

QString fileLabel(const DiffFile& file, const DiffFileSizes& sizes)
{
    const DiffFileFacts facts = DiffFileFacts::of(file);
    QString words = facts.inWords(sizes);
    if (!file.hunks.isEmpty()) {
        return (words.isEmpty() ? QString() : words + QStringLiteral(" · ")) + hunkCountLabel(file.hunks.size());
    }
    if (words.isEmpty()) {
        words = facts.isNew ? tr("New empty file") : facts.isDeleted ? tr("Deleted empty file") : tr("No changes");
    }
    return words;
}

QString sizeInWords(qint64 bytes)
{
    constexpr std::array units{"bytes", "KB", "MB", "GB", "TB"};
    constexpr double step = 1024;
    auto amount = double(bytes);
    std::size_t unit = 0;
    while (amount >= step && unit + 1 < units.size()) {
        amount /= step;
        ++unit;
    }
    // A decimal where it makes a difference of more than a tenth.
    const bool isShort = unit > 0 && amount < 10 && std::round(amount * 10) != std::round(amount) * 10;
    return QString::number(amount, 'f', isShort ? 1 : 0) + u' ' +
           (bytes == 1 ? QStringLiteral("byte") : QLatin1String(units[unit]));
}

} // namespace kelm
