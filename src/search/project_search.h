// A search through all files of a project.
#pragma once

#include "search/search_result.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

namespace kelm {

/// Searches a project on background workers and hands its results to the main thread as they come, in the order of the
/// walk. A new search ends the one before it, of which nothing arrives any more, and for which nobody waits: it looks
/// up between pieces of a file and of a long line. Main thread only.
class ProjectSearch final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)

public:
    explicit ProjectSearch(QObject* parent = nullptr);
    /// Ends the search.
    ~ProjectSearch() override;

    /// Empties the results and begins.
    void start(const QUrl& project, const QString& searchText);

    const QList<SearchResult>& results() const { return results_; }
    bool isRunning() const { return run_ != nullptr; }
    /// How many files the latest search has passed over so far since they are too long, or a line of theirs is.
    qsizetype tooLongFiles() const { return tooLongFiles_; }

Q_SIGNALS:
    void resultsCleared();
    /// `count` results have come behind the others.
    void resultsAdded(qsizetype count);
    void tooLongFilesChanged();
    void isRunningChanged();

private:
    struct Run;

    void stop();
    void take(const std::shared_ptr<Run>& run);

    void setTooLongFiles(qsizetype count);

    QList<SearchResult> results_;
    qsizetype tooLongFiles_ = 0;
    std::shared_ptr<Run> run_;
};

} // namespace kelm
