#include "workbench/view/link_run_place.h"

#include "app/state/link_runs.h"
#include "learning/diagnosis.h"
#include "workbench/view/link_run_bar.h"

#include <QVBoxLayout>

namespace kelm {

LinkRunPlace::LinkRunPlace(AppState& appState, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent), appState_(appState), themeManager_(themeManager)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    setVisible(false);
    connect(&appState_, &AppState::currentDocumentChanged, this, &LinkRunPlace::follow);
    connect(&appState_.linkRuns(), &LinkRuns::questionsChanged, this, &LinkRunPlace::follow);
    follow();
}

void LinkRunPlace::follow()
{
    const std::shared_ptr<Document> document = appState_.currentDocument();
    const bool asks = appState_.linkRuns().asksAbout(document);
    if (asks && bar_ != nullptr && asked_.lock() == document) {
        return;
    }
    if (bar_ != nullptr) {
        // Its own button may be what ends it.
        bar_->hide();
        bar_->deleteLater();
        bar_ = nullptr;
    }
    if (asks) {
        show(document);
    }
    setVisible(asks);
}

void LinkRunPlace::show(const std::shared_ptr<Document>& document)
{
    asked_ = document;
    const bool isKo = document->lessonInfo() && isKorean(*document->lessonInfo());
    bar_ = new LinkRunBar(isKo, themeManager_, appState_.scheduler(), this);
    layout()->addWidget(bar_);
    LinkRuns& runs = appState_.linkRuns();
    const std::weak_ptr asked = document;
    connect(bar_, &LinkRunBar::run, this, [&runs, asked] { runs.run(asked.lock()); });
    connect(bar_, &LinkRunBar::runAlways, this, [&runs, asked] { runs.runAlways(asked.lock()); });
    connect(bar_, &LinkRunBar::putAway, this, [&runs, asked] { runs.putAway(asked.lock()); });
}

} // namespace kelm
