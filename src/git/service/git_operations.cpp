#include "git/service/git_operations.h"

#include <algorithm>

namespace kelm {

namespace {

/// A word with what is given in its places. What is given is not looked into again.
QString filled(QStringView word, const QStringList& given)
{
    QString text;
    for (qsizetype at = 0; at < word.size(); ++at) {
        const qsizetype number = word[at] == u'%' && at + 1 < word.size() ? word[at + 1].digitValue() : -1;
        if (number >= 1 && number <= given.size()) {
            text += given.at(number - 1);
            ++at;
        } else {
            text += word[at];
        }
    }
    return text;
}

} // namespace

QStringList GitOperation::arguments(const QStringList& given) const
{
    QStringList result;
    for (const QStringView word : words) {
        if (word.isEmpty()) {
            break;
        }
        if (word == u"%@") {
            result += given;
        } else {
            result += filled(word, given);
        }
    }
    return result;
}

std::optional<QString> GitOperation::refusalOf(const QStringList& given) const
{
    for (qsizetype at = 0; at < std::min(given.size(), qsizetype(kinds.size())); ++at) {
        if (auto sentence = refusal(kinds.at(std::size_t(at)), given.at(at))) {
            return sentence;
        }
    }
    return std::nullopt;
}

} // namespace kelm
