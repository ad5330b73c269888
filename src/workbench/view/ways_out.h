// What a panel leaves undone, told, and the way that does it.
#pragma once

#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "text/find/find_request.h"

#include <QObject>
#include <QPointer>
#include <QSet>

#include <memory>

class QAction;

namespace kelm {

class EditorArea;
class GoToLineView;
class SearchOverlay;

/// Some panels take what a person types and do nothing with it. Each time a notice says so, and offers what does it:
/// the search panel's text in the find bar, until that is open, and the line of "Go to Line" in the text. A setting
/// that nothing reads yet says that it is only stored, when it is first changed. The panels themselves stay as they
/// are. Main thread only.
class WaysOut final : public QObject
{
public:
    /// All of it outlives this. While the find bar is offered, `findNext` takes that offer.
    WaysOut(AppState& appState, UserDefaults& settings, EditorArea& editors, QAction* findNext, QObject* parent);

    void serve(SearchOverlay& panel);
    void serve(GoToLineView& panel);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Request = std::shared_ptr<const FindRequest>;

    void offerFindBar(const Request& request);
    void openFindBar(const Request& request);
    void takeFindOfferBack();
    /// Whether the find bar is offered in the notice that is to be seen.
    bool offersFindBar() const;
    void offerLine(qint64 line);
    void settingChanged(const QString& key);

    AppState& appState_;
    EditorArea& editors_;
    QAction* findNext_;
    /// What the find bar is offered with; null while it is not.
    Request offered_;
    /// The notices of the two panels; 0 before the first.
    Notices::Id findNotice_ = 0;
    Notices::Id lineNotice_ = 0;
    /// The settings that were changed since the program began.
    QSet<QString> changedSettings_;
};

} // namespace kelm
