#include "app/state/left_files.h"

#include "platform/events/worker_pool.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/files/symbolic_links.h"
#include "platform/files/temporary_file.h"

#include <QSet>

namespace kelm {

void tidyBeside(const QList<QUrl>& files)
{
    if (files.isEmpty()) {
        return;
    }
    backgroundWorkers().start([files] {
        QSet<QByteArray> folders;
        for (const QUrl& url : files) {
            if (const auto target = url.isLocalFile() ? followLinks(nativePath(filePath(url))) : std::nullopt) {
                folders.insert(folderOf(*target));
            }
        }
        for (const QByteArray& folder : std::as_const(folders)) {
            removeLeftFiles(pathOfNative(folder));
        }
    });
}

} // namespace kelm
