// The state of a search in a document.
#pragma once

#include "text/find/search_match.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

namespace kelm {

/// What is looked for, how, and what was found. It searches nothing itself: whoever does puts the matches here. Main
/// thread only.
class SearchEngine final : public QObject
{
    Q_OBJECT
    /// The text looked for.
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(QString replaceText READ replaceText WRITE setReplaceText NOTIFY replaceTextChanged)
    /// The matches, in the order of the document.
    Q_PROPERTY(QList<kelm::SearchMatch> results READ results WRITE setResults NOTIFY resultsChanged)
    /// An index into `results`, from 0.
    Q_PROPERTY(
        qsizetype currentMatchIndex READ currentMatchIndex WRITE setCurrentMatchIndex NOTIFY currentMatchIndexChanged)

public:
    explicit SearchEngine(QObject* parent = nullptr);

    const QString& searchText() const { return searchText_; }
    void setSearchText(const QString& text);
    const QString& replaceText() const { return replaceText_; }
    void setReplaceText(const QString& text);
    const QList<SearchMatch>& results() const;
    void setResults(const QList<SearchMatch>& results);
    /// The results are others now, which `describe` gives when somebody asks for them.
    void offerResults(std::function<QList<SearchMatch>()> describe);
    qsizetype currentMatchIndex() const { return currentMatchIndex_; }
    void setCurrentMatchIndex(qsizetype index);

    /// Whether `searchText` is a regular expression.
    bool useRegex() const { return useRegex_; }
    void setUseRegex(bool useRegex) { useRegex_ = useRegex; }
    bool caseSensitive() const { return caseSensitive_; }
    void setCaseSensitive(bool caseSensitive) { caseSensitive_ = caseSensitive; }
    bool wholeWord() const { return wholeWord_; }
    void setWholeWord(bool wholeWord) { wholeWord_ = wholeWord; }

Q_SIGNALS:
    void searchTextChanged();
    void replaceTextChanged();
    void resultsChanged();
    void currentMatchIndexChanged();

private:
    QString searchText_;
    QString replaceText_;
    // Filled when they are asked for, from what was offered.
    mutable QList<SearchMatch> results_;
    mutable std::function<QList<SearchMatch>()> describe_;
    qsizetype currentMatchIndex_ = 0;
    bool useRegex_ = false;
    bool caseSensitive_ = false;
    bool wholeWord_ = false;
};

} // namespace kelm
