#include "git/diff/commit_text.h"

#include <QStringList>

namespace kelm {

namespace {

constexpr QStringView indentation = u"    ";

QStringView lineAt(QStringView text, qsizetype start)
{
    const qsizetype end = text.indexOf(u'\n', start);
    return text.sliced(start, (end < 0 ? text.size() : end) - start);
}

/// The rest of a line of the head such as "Author: Somebody"; null when the line is another.
QStringView valueOf(QStringView line, QStringView name)
{
    return line.startsWith(name) ? line.sliced(name.size()).trimmed() : QStringView();
}

} // namespace

CommitText CommitText::of(QStringView shown)
{
    CommitText commit;
    QStringList message;
    bool isInMessage = false;
    for (qsizetype start = 0; start < shown.size();) {
        const QStringView line = lineAt(shown, start);
        start += line.size() + 1;
        // Lines of the message are indented, so that none of them looks like this.
        if (line.startsWith(u"diff --")) {
            break;
        }
        if (line.isEmpty() || line.startsWith(indentation)) {
            isInMessage |= line.isEmpty();
            if (isInMessage) {
                message.append(line.isEmpty() ? QString() : line.sliced(indentation.size()).toString());
            }
        } else if (!isInMessage) {
            if (const QStringView author = valueOf(line, u"Author:"); !author.isNull()) {
                commit.author = author.toString();
            } else if (const QStringView date = valueOf(line, u"Date:"); !date.isNull()) {
                commit.date = date.toString();
            } else if (const QStringView merged = valueOf(line, u"Merge:"); !merged.isNull()) {
                commit.merged = merged.toString();
            }
        } else {
            // The title of what is noted behind the message.
            message.append(line.toString());
        }
    }
    while (!message.isEmpty() && message.front().isEmpty()) {
        message.removeFirst();
    }
    while (!message.isEmpty() && message.back().isEmpty()) {
        message.removeLast();
    }
    commit.message = message.join(u'\n');
    return commit;
}

} // namespace kelm
