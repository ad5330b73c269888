// Ends the program when its window has been painted once.
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

namespace kelm::bench {

class QuitAfterFirstPaint final : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            // The other widgets of the window are painted in the same go.
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace kelm::bench
