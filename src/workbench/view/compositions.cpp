#include "workbench/view/compositions.h"

#include "text/view/text_view.h"

#include <QApplication>
#include <QInputMethodEvent>

#include <utility>

namespace kelm {

Compositions::Compositions(QObject* parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

void Compositions::end()
{
    if (!field_) {
        return;
    }
    if (auto* view = qobject_cast<TextView*>(field_.data())) {
        view->commitComposition();
    } else {
        QGuiApplication::inputMethod()->commit();
    }
    if (field_) {
        // No input method took it up: what is seen is what is meant.
        commitTo(*field_, preedit_);
        QGuiApplication::inputMethod()->reset();
    }
}

bool Compositions::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::InputMethod:
        return handle(*watched, static_cast<QInputMethodEvent&>(*event));
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        // What the method made of the time before is here by now.
        echo_.reset();
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        end();
        return false;
    default:
        return false;
    }
}

bool Compositions::handle(QObject& field, QInputMethodEvent& event)
{
    const QString committed = event.commitString();
    const QString preedit = event.preeditString();
    const bool isCommitAlone = !committed.isEmpty() && preedit.isEmpty() && event.replacementLength() == 0;
    if (!field_ && isCommitAlone && echo_ == committed) {
        echo_.reset();
        event.accept();
        return true;
    }
    // The method may say that nothing is composed any more before it commits.
    if (!committed.isEmpty() || !preedit.isEmpty()) {
        echo_.reset();
    }
    if (field_ && field_ != &field && !committed.isEmpty()) {
        commitTo(*field_, committed);
        if (preedit.isEmpty()) {
            event.accept();
            return true;
        }
        event.setCommitString(QString());
    } else if (field_ && field_ != &field && !preedit.isEmpty()) {
        commitTo(*field_, preedit_);
    }
    const bool ends = field_ == &field && isCommitAlone;
    field_ = preedit.isEmpty() ? nullptr : &field;
    preedit_ = preedit;
    if (ends) {
        echo_ = committed;
    }
    return false;
}

void Compositions::commitTo(QObject& field, const QString& text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(&field, &event);
}

} // namespace kelm
