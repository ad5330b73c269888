// Files that are dragged out to other programs.
#pragma once

#include <QList>
#include <QUrl>

#include <memory>

class QMimeData;
class QWidget;

namespace kelm {

/// What other programs get of dragged files: their URLs, and their paths for who takes text alone.
std::unique_ptr<QMimeData> dataOfFiles(const QList<QUrl>& files);

/// Drags files until they are dropped somewhere. They can be copied and linked to and not be moved: nothing that is
/// open here goes away from its place. `source` may go meanwhile.
void dragFiles(QWidget& source, const QList<QUrl>& files);

} // namespace kelm
