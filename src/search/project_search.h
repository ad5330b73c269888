// A search through all files of a project.
#pragma once

#include "search/search_result.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

class QThread;

namespace kelm {

/// Walks a project on a thread of its own and hands its results to the main thread as they come, in the order of the
/// walk. A new search ends the one before it, of which nothing arrives any more. Main thread only.
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

Q_SIGNALS:
    void resultsCleared();
    /// `count` results have come behind the others.
    void resultsAdded(qsizetype count);
    void isRunningChanged();

private:
    struct Run;

    void stop();
    void take(const std::shared_ptr<Run>& run);

    QList<SearchResult> results_;
    std::shared_ptr<Run> run_;
    std::unique_ptr<QThread> thread_;
};

} // namespace kelm
