#include "platform/events/erasing_keys.h"

#include <QKeySequence>
#include <QSet>

namespace kelm {

namespace {

QSet<int> makeUnnamed()
{
    QSet<int> keys;
#ifndef Q_OS_MACOS
    for (const Qt::Key letter : {Qt::Key_D, Qt::Key_K, Qt::Key_U}) {
        keys.insert((Qt::CTRL | letter).toCombined());
    }
    // Each desktop has its own list.
    for (const QKeySequence::StandardKey meaning :
         {QKeySequence::Delete, QKeySequence::Backspace, QKeySequence::DeleteStartOfWord, QKeySequence::DeleteEndOfWord,
          QKeySequence::DeleteEndOfLine, QKeySequence::DeleteCompleteLine}) {
        for (const QKeySequence& sequence : QKeySequence::keyBindings(meaning)) {
            const QKeyCombination key = sequence[0];
            if (key.key() != Qt::Key_Backspace && key.key() != Qt::Key_Delete) {
                keys.insert(key.toCombined());
            }
        }
    }
#endif
    return keys;
}

} // namespace

bool erasesUnnamed(QKeyCombination key)
{
    // The toolkit makes its lists anew whenever it is asked.
    static const QSet<int> unnamed = makeUnnamed();
    return unnamed.contains(key.toCombined());
}

} // namespace kelm
