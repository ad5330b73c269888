// The strip of open documents above the editor.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QKeySequence>
#include <QWidget>

class QHBoxLayout;
class QScrollArea;

namespace kelm {

class PlainButton;
class TabItemView;
class Workspace;

/// One tab for each open document, in their order, and a button for a new one behind the last. Tabs are no model of
/// their own: the strip follows the list of the state. What finds no room is scrolled to, sideways, and the selected
/// tab is brought into sight.
class TabBarView final : public QWidget
{
    Q_OBJECT

public:
    TabBarView(AppState& appState, ThemeManager& themeManager, Workspace& workspace, QWidget* parent = nullptr);

    const QList<TabItemView*>& tabs() const { return tabs_; }
    PlainButton& newTabButton() { return *newTabButton_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refreshDocuments();
    void refreshCurrentIndex();
    TabItemView* makeTab(const std::shared_ptr<Document>& document);
    void scrollToSelected();
    QKeySequence keyOf(qsizetype index) const;

    AppState& appState_;
    ThemeManager& themeManager_;
    Workspace& workspace_;
    QScrollArea* scrollArea_;
    QHBoxLayout* row_;
    PlainButton* newTabButton_;
    QList<TabItemView*> tabs_;
};

} // namespace kelm
