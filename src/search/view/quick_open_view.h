// The panel that reopens a file by its name.
#pragma once

#include "search/view/overlay_card.h"

#include <QList>
#include <QUrl>

class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace kelm {

class AppState;
class TextLabel;

/// Lists the recent files whose names hold what is typed. The selection is a place in the list and stays where it is
/// while the list changes: behind its end no file is selected, and Return only closes the panel. The panel's greatest
/// height is that with the longest list that is seen at once.
class QuickOpenView final : public OverlayCard
{
    Q_OBJECT

public:
    explicit QuickOpenView(AppState& appState, QWidget* parent = nullptr);

    QList<QUrl> filteredFiles() const;
    qsizetype selectedIndex() const { return selectedIndex_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class FileRowDelegate;

    bool handleKey(int key);
    void fillList();
    void showSelection();
    /// Says which file Return would open.
    void tellSelection();
    void openRow(qsizetype row);
    void close();

    AppState& appState_;
    QLineEdit* searchText_;
    QListWidget* list_;
    TextLabel* noMatch_;
    qsizetype selectedIndex_ = 0;
};

} // namespace kelm
