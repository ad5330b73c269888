#include "editor/kept_ready/completion_ranking.h"

#include "editor/kept_ready/completion_tables.h"
#include "platform/text/regular_expression.h"
#include "text/boundaries/text_boundaries.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kelm {

namespace {

constexpr int samePrefix = 100;
constexpr int sameFoldedPrefix = 50;
constexpr qsizetype closeness = 20;

struct Candidate
{
    QString text;
    const Snippet* snippet;
    int score;
};

CompletionItem itemOf(const Candidate& candidate)
{
    if (candidate.snippet == nullptr) {
        return {QUuid::createUuid(), candidate.text, CompletionType::keyword, QStringLiteral("Keyword"), {}};
    }
    return {QUuid::createUuid(), candidate.text, CompletionType::snippet, QStringLiteral("Snippet"),
            QString(candidate.snippet->body)};
}

} // namespace

QList<CompletionItem> getSuggestions(const QString& word, Language language)
{
    const QString lowered = word.toLower();
    std::vector<Candidate> candidates;
    const auto consider = [&](QLatin1String text, const Snippet* snippet) {
        const QString candidate(text);
        if (candidate.toLower().startsWith(lowered)) {
            candidates.push_back({candidate, snippet, relevanceScore(candidate, word)});
        }
    };
    for (const QLatin1String keyword : completionKeywords(language)) {
        consider(keyword, nullptr);
    }
    for (const Snippet& snippet : completionSnippets()) {
        consider(snippet.trigger, &snippet);
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score > b.score; });
    candidates.resize(std::min(candidates.size(), static_cast<std::size_t>(mostCompletions)));
    QList<CompletionItem> items;
    std::transform(candidates.begin(), candidates.end(), std::back_inserter(items), itemOf);
    return items;
}

int relevanceScore(const QString& text, const QString& prefix)
{
    int score = 0;
    if (text.startsWith(prefix)) {
        score = samePrefix;
    } else if (text.toLower().startsWith(prefix.toLower())) {
        score = sameFoldedPrefix;
    }
    const qsizetype difference = std::abs(graphemeCount(text) - graphemeCount(prefix));
    return score + static_cast<int>(std::max<qsizetype>(0, closeness - difference));
}

QString expandedSnippet(QString body)
{
    static const auto placeholder = RegularExpression::compile(u"\\$\\{\\d+:([^}]*)\\}");
    body.remove(QStringLiteral("${0}"));
    return placeholder ? placeholder->replaceMatches(body, u"$1") : body;
}

} // namespace kelm
