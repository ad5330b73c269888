#include "platform/view/file_drag.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QDrag>
#include <QMimeData>

namespace kelm {

std::unique_ptr<QMimeData> dataOfFiles(const QList<QUrl>& files)
{
    auto data = std::make_unique<QMimeData>();
    QStringList paths;
    for (const QUrl& file : files) {
        paths << shownPath(filePath(file));
    }
    data->setUrls(files);
    data->setText(paths.join(u'\n'));
    return data;
}

void dragFiles(QWidget& source, const QList<QUrl>& files)
{
    auto* drag = new QDrag(&source);
    drag->setMimeData(dataOfFiles(files).release());
    drag->exec(Qt::CopyAction | Qt::LinkAction, Qt::CopyAction);
}

} // namespace kelm
