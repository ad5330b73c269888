#include "workbench/view/tab_use.h"

#include <QApplication>
#include <QKeyEvent>
#include <QSet>

#include <utility>

namespace kelm {

TabUse::TabUse(AppState& appState, QObject* parent) : QObject(parent), appState_(appState)
{
    connect(&appState_, &AppState::documentsChanged, this, &TabUse::followDocuments);
    connect(&appState_, &AppState::currentDocumentChanged, this, &TabUse::followCurrent);
    followDocuments();
    followCurrent();
}

void TabUse::followDocuments()
{
    settle();
    const AppState::Documents& open = appState_.documents();
    const QSet<std::shared_ptr<Document>> isOpen(open.begin(), open.end());
    order_.removeIf([&isOpen](const auto& document) { return !isOpen.contains(document); });
    const QSet<std::shared_ptr<Document>> isKnown(order_.begin(), order_.end());
    for (const std::shared_ptr<Document>& document : open) {
        // One that came with others, and was not seen yet.
        if (!isKnown.contains(document)) {
            order_.append(document);
        }
    }
}

void TabUse::followCurrent()
{
    const std::shared_ptr<Document> current = appState_.currentDocument();
    if (!isWalking() && current) {
        order_.removeOne(current);
        order_.prepend(current);
    }
}

void TabUse::walk(bool backwards, Qt::Key holder, Qt::KeyboardModifier heldAs)
{
    const qsizetype count = order_.size();
    if (count < 2) {
        return;
    }
    if (!isWalking()) {
        holder_ = holder;
        qApp->installEventFilter(this);
    }
    const qsizetype at = order_.indexOf(appState_.currentDocument());
    const qsizetype next = at < 0 ? 0 : (at + (backwards ? count - 1 : 1)) % count;
    appState_.setCurrentDocumentIndex(appState_.documents().indexOf(order_.at(next)));
    if (!QGuiApplication::keyboardModifiers().testFlag(heldAs)) {
        settle();
    }
}

void TabUse::settle()
{
    if (std::exchange(holder_, Qt::Key_unknown) != Qt::Key_unknown) {
        qApp->removeEventFilter(this);
        followCurrent();
    }
}

bool TabUse::eventFilter(QObject* /*watched*/, QEvent* event)
{
    const bool isRelease = event->type() == QEvent::KeyRelease;
    if ((isRelease && static_cast<QKeyEvent*>(event)->key() == holder_) ||
        event->type() == QEvent::ApplicationDeactivate || event->type() == QEvent::WindowDeactivate) {
        settle();
    }
    return false;
}

} // namespace kelm
