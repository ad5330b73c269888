#include "workbench/view/ways_out.h"

#include "editor/view/editor_container_view.h"
#include "search/view/go_to_line_view.h"
#include "search/view/search_overlay.h"
#include "settings/settings_table.h"
#include "text/view/find_bar.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/settings_line.h"

#include <QAction>
#include <QEvent>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

QString findWords(SearchMode mode)
{
    return mode == SearchMode::project
               ? u"Text is searched by the find bar, and the project's files by Search in the sidebar."_s
               : u"Text is searched by the find bar."_s;
}

} // namespace

WaysOut::WaysOut(AppState& appState, UserDefaults& settings, EditorArea& editors, QAction* findNext, QObject* parent)
    : QObject(parent), appState_(appState), editors_(editors), findNext_(findNext)
{
    findNext_->installEventFilter(this);
    connect(&settings, &UserDefaults::valueChanged, this, &WaysOut::settingChanged);
    // A line is one of the text that was seen.
    connect(&appState_, &AppState::currentDocumentChanged, this, [this] { appState_.notices().remove(lineNotice_); });
}

void WaysOut::serve(SearchOverlay& panel)
{
    // It begins with empty fields.
    takeFindOfferBack();
    connect(&panel, &SearchOverlay::searchAskedFor, this, [this, request = panel.request()] { offerFindBar(request); });
    connect(&panel, &SearchOverlay::findBarAskedFor, this, [this, request = panel.request()] { openFindBar(request); });
}

void WaysOut::serve(GoToLineView& panel)
{
    connect(&panel, &GoToLineView::submitted, this, &WaysOut::offerLine);
}

void WaysOut::offerFindBar(const Request& request)
{
    const QString words = findWords(appState_.searchMode());
    takeFindOfferBack();
    EditorContainerView* const editor = editors_.currentEditor();
    if (editor == nullptr) {
        findNotice_ = appState_.notices().report(words + u" No text is open."_s);
        return;
    }
    // Opened in another way, it needs no offer.
    editor->textView().findBar().installEventFilter(this);
    offered_ = request;
    findNotice_ = appState_.notices().report(words, {{u"Find in text"_s, [this, request] { openFindBar(request); }}});
}

void WaysOut::openFindBar(const Request& request)
{
    EditorContainerView* const editor = editors_.currentEditor();
    if (editor == nullptr) {
        offerFindBar(request);
        return;
    }
    takeFindOfferBack();
    appState_.setShowSearch(false);
    editor->textView().findBar().open(*request);
}

void WaysOut::takeFindOfferBack()
{
    offered_.reset();
    appState_.notices().remove(findNotice_);
}

bool WaysOut::offersFindBar() const
{
    const Notice* const notice = appState_.notices().current();
    return offered_ && notice != nullptr && !notice->offers.empty() &&
           notice->offers.front().label == u"Find in text"_s;
}

bool WaysOut::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        takeFindOfferBack();
    }
    if (watched != findNext_ || event->type() != QEvent::Shortcut || !offersFindBar()) {
        return QObject::eventFilter(watched, event);
    }
    EditorContainerView* const editor = editors_.currentEditor();
    if (editor == nullptr || editor->textView().findBar().isSearching()) {
        return QObject::eventFilter(watched, event);
    }
    openFindBar(Request(offered_));
    return true;
}

void WaysOut::offerLine(qint64 line)
{
    const QString words = u"Line %1"_s.arg(QString::number(line));
    appState_.notices().remove(lineNotice_);
    if (editors_.currentEditor() == nullptr) {
        lineNotice_ = appState_.notices().report(words + u": no text is open."_s);
        return;
    }
    lineNotice_ =
        appState_.notices().report(words, {{u"Show"_s, [this, line] {
                                                if (EditorContainerView* editor = editors_.currentEditor()) {
                                                    editor->showPlace({qsizetype(std::max<qint64>(line, 1)), 1});
                                                    editors_.focusCurrentEditor();
                                                }
                                            }}});
}

void WaysOut::settingChanged(const QString& key)
{
    const std::vector<Setting>& table = settingsTable();
    const bool isSetting =
        std::any_of(table.begin(), table.end(), [&key](const Setting& setting) { return setting.key == key; });
    if (!isSetting || changedSettings_.contains(key)) {
        return;
    }
    changedSettings_.insert(key);
    appState_.notices().report(SettingsLine::storedWords());
}

} // namespace kelm
