#include "git/service/git_refusal.h"

#include "platform/text/shown_name.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

QString inWords(GitNameKind kind)
{
    switch (kind) {
    case GitNameKind::none:
        break;
    case GitNameKind::branch:
        return u"branch name"_s;
    case GitNameKind::tag:
        return u"tag name"_s;
    case GitNameKind::remote:
        return u"remote's name"_s;
    case GitNameKind::url:
        return u"URL"_s;
    case GitNameKind::stash:
        return u"stash name"_s;
    case GitNameKind::folder:
        return u"folder name"_s;
    case GitNameKind::userName:
        return u"user name"_s;
    case GitNameKind::userEmail:
        return u"mail address"_s;
    case GitNameKind::commit:
        return u"commit name"_s;
    }
    return {};
}

bool isControl(QChar unit)
{
    const QChar::Category category = unit.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

} // namespace

std::optional<QString> refusal(GitNameKind kind, const QString& name)
{
    if (kind == GitNameKind::none) {
        return std::nullopt;
    }
    const QString named = u"The %1 \"%2\" "_s.arg(inWords(kind), shownName(name));
    if (name.startsWith(u'-')) {
        return named + u"begins with a hyphen, so that git would take it for an option."_s;
    }
    if (std::any_of(name.begin(), name.end(), isControl)) {
        return named + u"holds a control character."_s;
    }
    if ((kind == GitNameKind::branch || kind == GitNameKind::tag) && name.contains(u':')) {
        return named + u"holds a colon, at which git would take it apart."_s;
    }
    return std::nullopt;
}

} // namespace kelm
