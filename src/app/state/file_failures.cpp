#include "app/state/file_failures.h"

#include "app/state/notices.h"
#include "app/state/text_file.h"
#include "platform/files/file_url.h"
#include "platform/text/grapheme_boundaries.h"
#include "platform/text/shown_name.h"

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype longestName = 60;
constexpr qsizetype mostNames = 3;

QString reasonOf(const FileFailure& failure)
{
    return failure.error.reason.isEmpty() ? failure.error.message : failure.error.reason;
}

} // namespace

QString shownName(const QUrl& url)
{
    const QString last = url.isLocalFile() ? lastPathComponent(url) : descriptionOf(url);
    if (last.isEmpty()) {
        return u"What has no name"_s;
    }
    if (last.size() <= longestName) {
        return shownName(QStringView(last));
    }
    // No part of a character.
    const qsizetype head = graphemeCut(last, longestName / 2);
    const qsizetype tail = graphemeBoundaryAtOrBehind(last, last.size() - longestName / 2);
    return shownName(QStringView(last.first(head) + u'…' + last.sliced(tail)));
}

void reportFailures(Notices& notices, const QList<FileFailure>& failures, const QString& done)
{
    if (failures.isEmpty()) {
        return;
    }
    const QString reason = reasonOf(failures.constFirst());
    if (failures.size() == 1) {
        notices.report(u"%1 could not be %2: %3."_s.arg(shownName(failures.constFirst().url), done, reason));
        return;
    }
    const bool isOneReason = std::all_of(failures.begin(), failures.end(),
                                         [&reason](const FileFailure& each) { return reasonOf(each) == reason; });
    QStringList names;
    for (const FileFailure& each : failures.first(std::min(failures.size(), mostNames))) {
        names << (isOneReason ? shownName(each.url) : u"%1 (%2)"_s.arg(shownName(each.url), reasonOf(each)));
    }
    const QString others = failures.size() > mostNames ? u" and others"_s : QString();
    const QString end = isOneReason ? u": "_s + reason : QString();
    notices.report(u"%1 files could not be %2: %3%4%5."_s.arg(QString::number(failures.size()), done,
                                                              names.join(u", "_s), others, end));
}

} // namespace kelm
