// How often something is painted.
#pragma once

#include <QEvent>
#include <QObject>

namespace kelm::test {

/// Counts the paintings of what it watches.
class Paints final : public QObject
{
public:
    explicit Paints(QObject& watched) { watched.installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace kelm::test
