// What a screen reader is told while something happens.
#pragma once

#include "platform/view/screen_reader.h"

#include <QAccessible>
#include <QList>
#include <QStringList>

namespace kelm::test {

/// Listens as a screen reader does while it lives; one at a time.
class AccessibleListener
{
public:
    struct Heard
    {
        QAccessible::Event type;
        const QObject* object;
        int child;
        QString name;
        /// Of a text that grew, what came.
        QString text = {};
    };

    AccessibleListener()
    {
        heard().clear();
        screenReader::tellInstead(&AccessibleListener::hear);
    }
    ~AccessibleListener() { screenReader::tellInstead({}); }
    AccessibleListener(const AccessibleListener&) = delete;
    AccessibleListener& operator=(const AccessibleListener&) = delete;

    /// The names that were told by events of one type of one object, or of any, since the last look.
    static QStringList take(QAccessible::Event type, const QObject* object = nullptr)
    {
        QStringList names;
        QList<Heard> rest;
        for (const Heard& each : heard()) {
            if (each.type == type && (object == nullptr || each.object == object)) {
                names.append(each.name);
            } else {
                rest.append(each);
            }
        }
        heard() = rest;
        return names;
    }
    static const QList<Heard>& all() { return heard(); }

private:
    static QList<Heard>& heard()
    {
        static QList<Heard> heard;
        return heard;
    }
    static void hear(QAccessibleEvent& event)
    {
        QAccessibleInterface* node = event.accessibleInterface();
        Heard each{event.type(), event.object(), event.child(),
                   node != nullptr ? node->text(QAccessible::Name) : QString()};
        if (event.type() == QAccessible::TextInserted) {
            each.text = static_cast<QAccessibleTextInsertEvent&>(event).textInserted();
        }
        heard().append(each);
    }
};

} // namespace kelm::test
