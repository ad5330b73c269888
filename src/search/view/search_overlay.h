// The floating search panel.
#pragma once

#include "search/view/overlay_card.h"
#include "text/find/find_request.h"

#include <memory>

class QLineEdit;

namespace kelm {

class AppState;
class PlainButton;
class TextLabel;

/// Fields for a text and its replacement. They hold what is typed and nothing more: searching a document is the find
/// bar's business, and this panel finds and replaces nothing. It tells when someone wants it to, so that the way that
/// does can be offered. A new panel starts with empty fields.
class SearchOverlay final : public OverlayCard
{
    Q_OBJECT

public:
    explicit SearchOverlay(AppState& appState, QWidget* parent = nullptr);

    /// What is typed and chosen. It follows the panel, and stays as it was last when that has gone.
    std::shared_ptr<const FindRequest> request() const { return request_; }

public Q_SLOTS:
    /// The keys of the find bar, which are pressed here too: they ask for that bar.
    void findNext() { Q_EMIT findBarAskedFor(); }
    void findPrevious() { Q_EMIT findBarAskedFor(); }

Q_SIGNALS:
    /// Return, or a button, has asked for what the panel does not do.
    void searchAskedFor();
    void findBarAskedFor();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeTitleRow();
    QWidget* makeFindRow();
    QWidget* makeReplaceRow();
    QWidget* makeButtons();
    void refreshMode();
    void refreshRequest();

    AppState& appState_;
    std::shared_ptr<FindRequest> request_ = std::make_shared<FindRequest>();
    TextLabel* title_ = nullptr;
    QLineEdit* searchText_ = nullptr;
    QLineEdit* replaceText_ = nullptr;
    PlainButton* caseToggle_ = nullptr;
    PlainButton* patternToggle_ = nullptr;
    QWidget* replaceRow_ = nullptr;
    QWidget* buttons_ = nullptr;
};

} // namespace kelm
