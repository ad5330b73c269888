#include "platform/process/environment.h"

#include <unistd.h>

#ifdef Q_OS_MACOS
extern char** environ; // NOLINT(readability-redundant-declaration): no header of that system declares it.
#endif

namespace kelm {

QMap<QString, QString> applicationEnvironment()
{
    QMap<QString, QString> environment;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const QString text = QString::fromUtf8(*entry);
        const qsizetype equals = text.indexOf(u'=');
        if (equals > 0 && !environment.contains(text.first(equals))) {
            environment.insert(text.first(equals), text.sliced(equals + 1));
        }
    }
    return environment;
}

} // namespace kelm
