// The page of the sidebar that searches the project.
#pragma once

#include "search/project_search.h"

#include <QWidget>

class QLineEdit;
class QListView;
class QStackedWidget;

namespace kelm {

class AppState;
class ProjectSearchModel;
class TextLabel;

/// A field, and below it each line of the project that holds its text. A click on a line opens its file. A thin line
/// below the field moves while the search runs, and a line below the results says how many files were too long.
class ProjectSearchView final : public QWidget
{
    Q_OBJECT

public:
    explicit ProjectSearchView(AppState& appState, QWidget* parent = nullptr);

    const QList<SearchResult>& results() const { return search_.results(); }
    bool isSearching() const { return search_.isRunning(); }

private:
    /// Begins a search for what the field holds; without a project or a text the old results stay.
    void performSearch();
    void open(int row);
    void updatePage();
    void updateTooLong();

    AppState& appState_;
    ProjectSearch search_;
    QLineEdit* searchText_;
    QStackedWidget* pages_;
    QListView* list_;
    ProjectSearchModel* model_;
    TextLabel* tooLong_;
};

} // namespace kelm
