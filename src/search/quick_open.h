// What quick open offers.
#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace kelm {

/// Those of `recentFiles` whose name, without its folders, contains `searchText` in the sense of the user's language,
/// letter case aside; all of them for an empty text. In their order.
QList<QUrl> filteredFiles(const QList<QUrl>& recentFiles, const QString& searchText);

} // namespace kelm
