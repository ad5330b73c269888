#include "text/find/search_engine.h"

#include <utility>

namespace kelm {

SearchEngine::SearchEngine(QObject* parent) : QObject(parent) {}

void SearchEngine::setSearchText(const QString& text)
{
    if (searchText_ != text) {
        searchText_ = text;
        Q_EMIT searchTextChanged();
    }
}

void SearchEngine::setReplaceText(const QString& text)
{
    if (replaceText_ != text) {
        replaceText_ = text;
        Q_EMIT replaceTextChanged();
    }
}

const QList<SearchMatch>& SearchEngine::results() const
{
    if (const auto describe = std::exchange(describe_, nullptr)) {
        results_ = describe();
    }
    return results_;
}

void SearchEngine::setResults(const QList<SearchMatch>& results)
{
    // What was offered and never asked for need not be described to know that it goes.
    const bool wasOffered = std::exchange(describe_, nullptr) != nullptr;
    if (wasOffered || results_ != results) {
        results_ = results;
        Q_EMIT resultsChanged();
    }
}

void SearchEngine::offerResults(std::function<QList<SearchMatch>()> describe)
{
    describe_ = std::move(describe);
    Q_EMIT resultsChanged();
}

void SearchEngine::setCurrentMatchIndex(qsizetype index)
{
    if (currentMatchIndex_ != index) {
        currentMatchIndex_ = index;
        Q_EMIT currentMatchIndexChanged();
    }
}

} // namespace kelm
