#include "git/service/git_failure.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// Which part of git's words is the reason.
enum class Part {
    /// The line with the sign, without what stands in brackets at its end.
    line,
    /// The line before that one, where other programs have told why.
    lineBefore,
    /// What stands in quotes, put into the row's own words.
    quoted,
    /// What stands behind the sign.
    rest,
};

struct Reason
{
    /// What the command begins with, its words parted by blanks; empty for every command.
    QStringView command;
    /// What a line of git's words holds.
    QStringView sign;
    Part part;
    /// The words, "%1" standing for the part; empty for the part alone.
    QStringView words = {};
    bool isAboutConflicts = false;
};

/// In the order in which they are looked for. What no row knows is told by its first "error:" or "fatal:".
constexpr std::array reasons{
    Reason{u"checkout --", u"did not match any file", Part::quoted, u"git has no version of %1 to go back to."},
    Reason{u"checkout", u"did not match any file", Part::quoted, u"There is no branch %1."},
    Reason{u"merge --abort", u"There is no merge to abort", Part::line,
           u"No merge goes on here. A rebase is ended in the terminal: git rebase --continue, or --abort."},
    Reason{u"apply", u"patch does not apply", Part::line, u"The hunk does not fit what is there now."},
    Reason{u"commit", u"no changes added to commit", Part::line, u"Nothing is staged: %1."},
    Reason{u"commit", u"nothing added to commit", Part::line, u"Nothing is staged: %1."},
    Reason{u"commit", u"nothing to commit", Part::line, u"There is %1."},
    Reason{u"commit", u"You asked to amend the most recent commit", Part::line,
           u"Amending would leave the last commit empty."},
    Reason{u"commit", u"Please tell me who you are", Part::line,
           u"git does not know who commits: set user.name and user.email."},
    Reason{u"", u"because you have unmerged files", Part::line, {}, true},
    Reason{u"", u"You have unmerged paths", Part::line, {}, true},
    Reason{u"", u"CONFLICT (", Part::rest, {}, true},
    Reason{u"", u"could not apply ", Part::line, {}, true},
    Reason{u"", u"index.lock': File exists", Part::quoted, u"Another git is at work here, or has left its lock: %1."},
    Reason{u"", u"Could not read from remote repository", Part::lineBefore},
};

/// What git and its helpers begin such lines with, in English and in Korean.
constexpr std::array<QStringView, 6> errorSigns{u"error: ", u"fatal: ",  u"ERROR: ",
                                                u"오류: ",  u"치명적: ", u"remote: error: "};
constexpr std::array<QStringView, 6> asideSigns{u"hint: ", u"hint:", u"warning: ", u"Warning: ", u"힌트: ", u"경고: "};
constexpr QStringView rejectionSign = u" ! [";

constexpr qsizetype mostReadUnits = 1 << 16;
constexpr int mostListed = 3;

template <std::size_t size>
QStringView withoutSign(QStringView line, const std::array<QStringView, size>& signs)
{
    for (const QStringView sign : signs) {
        if (line.startsWith(sign)) {
            return line.sliced(sign.size());
        }
    }
    return line;
}

template <std::size_t size>
bool startsWithAny(QStringView line, const std::array<QStringView, size>& signs)
{
    return std::any_of(signs.begin(), signs.end(), [line](QStringView sign) { return line.startsWith(sign); });
}

/// The lines that hold something. What progress has written over, up to the last carriage return, is no line of its
/// own.
QList<QStringView> linesOf(QStringView text)
{
    QList<QStringView> lines;
    for (QStringView line : text.first(std::min(text.size(), mostReadUnits)).tokenize(u'\n')) {
        while (line.endsWith(u'\r')) {
            line.chop(1);
        }
        line = line.sliced(line.lastIndexOf(u'\r') + 1);
        if (!line.trimmed().isEmpty()) {
            lines.append(line);
        }
    }
    return lines;
}

/// A line as a reason: without its sign, and without a colon behind which nothing comes.
QString reasonOf(QStringView line)
{
    QStringView reason = withoutSign(line.trimmed(), errorSigns).trimmed();
    while (reason.endsWith(u':')) {
        reason.chop(1);
    }
    return reason.toString();
}

/// A line that ends with a colon, and what is listed below it.
QString withList(const QList<QStringView>& lines, qsizetype at)
{
    QStringList listed;
    for (qsizetype i = at + 1; i < lines.size() && (lines[i].startsWith(u'\t') || lines[i].startsWith(u"  ")); ++i) {
        listed.append(lines[i].trimmed().toString());
    }
    QString reason = reasonOf(lines[at]);
    if (!lines[at].trimmed().endsWith(u':') || listed.isEmpty()) {
        return reason;
    }
    const qsizetype others = listed.size() - mostListed;
    reason += u": "_s + listed.first(std::min<qsizetype>(listed.size(), mostListed)).join(u", "_s);
    return others > 0 ? reason + u" and %1 more"_s.arg(others) : reason;
}

/// " ! [rejected]  main -> main (fetch first)" as "rejected: fetch first".
QString rejectionOf(QStringView line)
{
    const QStringView kind = line.sliced(rejectionSign.size(), std::max<qsizetype>(line.indexOf(u']'), 4) - 4);
    const qsizetype open = line.lastIndexOf(u'(');
    const qsizetype close = line.lastIndexOf(u')');
    return open < 0 || close < open ? kind.toString()
                                    : kind.toString() + u": "_s + line.sliced(open + 1, close - open - 1).toString();
}

QStringView quotedIn(QStringView line)
{
    const qsizetype open = line.indexOf(u'\'');
    const qsizetype close = line.lastIndexOf(u'\'');
    return open < 0 || close <= open ? QStringView() : line.sliced(open + 1, close - open - 1);
}

QStringView withoutBrackets(QStringView line)
{
    const qsizetype open = line.lastIndexOf(u" (");
    return line.endsWith(u')') && open > 0 ? line.first(open) : line;
}

QString partOf(const Reason& reason, const QList<QStringView>& lines, qsizetype at)
{
    switch (reason.part) {
    case Part::line:
        return reasonOf(withoutBrackets(lines[at].trimmed()));
    case Part::lineBefore:
        return reasonOf(lines[std::max<qsizetype>(at - 1, 0)]);
    case Part::quoted:
        return quotedIn(lines[at]).toString();
    case Part::rest: {
        const qsizetype sign = lines[at].indexOf(reason.sign) + reason.sign.size();
        const qsizetype colon = lines[at].indexOf(u": ", sign);
        return lines[at].sliced(colon < 0 ? sign : colon + 2).trimmed().toString();
    }
    }
    return {};
}

struct Found
{
    const Reason* reason;
    qsizetype line;
};

std::optional<Found> findReason(const QStringList& command, const QList<QStringView>& lines)
{
    const QString words = command.join(u' ') + u' ';
    for (const Reason& reason : reasons) {
        if (!reason.command.isEmpty() && !words.startsWith(reason.command.toString() + u' ')) {
            continue;
        }
        const auto line = std::find_if(lines.begin(), lines.end(),
                                       [&reason](QStringView each) { return each.contains(reason.sign); });
        if (line != lines.end()) {
            return Found{&reason, line - lines.begin()};
        }
    }
    return std::nullopt;
}

QString reasonIn(const QStringList& command, const QList<QStringView>& lines)
{
    if (const std::optional<Found> found = findReason(command, lines)) {
        const QString part = partOf(*found->reason, lines, found->line);
        return found->reason->words.isEmpty() ? part : found->reason->words.toString().replace(u"%1"_s, part);
    }
    const auto lineWith = [&lines](auto holds) { return std::find_if(lines.begin(), lines.end(), holds); };
    if (const auto line = lineWith([](QStringView each) { return each.startsWith(rejectionSign); });
        line != lines.end()) {
        return rejectionOf(*line);
    }
    auto line = lineWith([](QStringView each) { return startsWithAny(each, errorSigns); });
    if (line == lines.end()) {
        line = lineWith([](QStringView each) { return !startsWithAny(each.trimmed(), asideSigns); });
    }
    return line == lines.end() ? QString() : withList(lines, line - lines.begin());
}

} // namespace

QString GitFailure::sentence() const
{
    const QList<QStringView> lines = linesOf(text);
    QString reason = reasonIn(command, lines);
    if (reason.isEmpty() && !lines.isEmpty()) {
        reason = lines.first().toString();
    }
    return reason.left(mostSentenceUnits).simplified();
}

bool GitFailure::hasMore() const
{
    return text.trimmed() != sentence();
}

bool GitFailure::isAboutConflicts() const
{
    const std::optional<Found> found = findReason(command, linesOf(text));
    return found && found->reason->isAboutConflicts;
}

} // namespace kelm
