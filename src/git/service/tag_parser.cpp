#include "git/service/tag_parser.h"

namespace kelm {

QList<GitTag> parseTags(QStringView output)
{
    QList<GitTag> tags;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const QList<QStringView> pieces = line.split(QChar(u'\0'));
        if (pieces.size() < 5) {
            continue;
        }
        GitTag tag{QUuid::createUuid(), pieces[0].toString(), std::nullopt, std::nullopt};
        const QStringView sha = pieces[2].isEmpty() ? pieces[3] : pieces[2];
        if (!sha.isEmpty()) {
            tag.sha = sha.toString();
        }
        if (pieces[1] == u"tag") {
            tag.annotation = pieces[4].toString();
        }
        tags.append(tag);
    }
    return tags;
}

} // namespace kelm
