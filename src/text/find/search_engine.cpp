#include "text/find/search_engine.h"

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

void SearchEngine::setResults(const QList<SearchMatch>& results)
{
    if (results_ != results) {
        results_ = results;
        Q_EMIT resultsChanged();
    }
}

void SearchEngine::setCurrentMatchIndex(qsizetype index)
{
    if (currentMatchIndex_ != index) {
        currentMatchIndex_ = index;
        Q_EMIT currentMatchIndexChanged();
    }
}

} // namespace kelm
