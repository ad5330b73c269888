// What killed programs have left beside files.
#pragma once

#include <QList>
#include <QUrl>

namespace kelm {

/// Takes away the temporary files that saves which were killed have left in the folders of these files (see
/// `removeLeftFiles`), on a worker, since a folder may be large. What is no file of this machine is passed over.
void tidyBeside(const QList<QUrl>& files);

} // namespace kelm
