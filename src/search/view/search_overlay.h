// The floating search panel.
#pragma once

#include "search/view/overlay_card.h"

class QLineEdit;

namespace kelm {

class AppState;
class PlainButton;
class TextLabel;

/// Fields for a text and its replacement. They hold what is typed and nothing more: searching a document is the find
/// bar's business, and this panel finds and replaces nothing. A new panel starts with empty fields.
class SearchOverlay final : public OverlayCard
{
    Q_OBJECT

public:
    explicit SearchOverlay(AppState& appState, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeTitleRow();
    QWidget* makeFindRow();
    QWidget* makeReplaceRow();
    QWidget* makeButtons();
    void refreshMode();

    AppState& appState_;
    TextLabel* title_ = nullptr;
    QLineEdit* searchText_ = nullptr;
    QLineEdit* replaceText_ = nullptr;
    QWidget* replaceRow_ = nullptr;
    QWidget* buttons_ = nullptr;
};

} // namespace kelm
