#include "git/viewer/view/file_sizes.h"

#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/events/main_queue.h"

#include <QPointer>

#include <algorithm>

namespace kelm {

FileSizes::FileSizes(DiffViewer& viewer, Ask ask) : QObject(&viewer), viewer_(viewer), ask_(std::move(ask))
{
    connect(&viewer, &DiffViewer::shown, this, &FileSizes::begin);
}

void FileSizes::begin()
{
    waiting_.clear();
    const QList<DiffFile>& files = viewer_.list().diffLayout().files();
    for (qsizetype file = files.size() - 1; file >= 0; --file) {
        if (files[file].hunks.isEmpty() && DiffFileFacts::of(files[file]).isBinary) {
            waiting_.push_back(file);
        }
    }
    askSoon();
}

void FileSizes::askSoon()
{
    if (!waiting_.empty() && !isQueued_) {
        isQueued_ = true;
        // Not from inside the wait for another command.
        onMainQueue(this, [this] { askNext(); });
    }
}

void FileSizes::askNext()
{
    isQueued_ = false;
    if (waiting_.empty()) {
        return;
    }
    // While git is asked, events may come through: another text, and the end of the viewer.
    const QPointer<FileSizes> self = this;
    const qsizetype file = waiting_.back();
    const QUuid id = viewer_.list().diffLayout().files()[file].id;
    waiting_.pop_back();
    const DiffFileSizes sizes = ask_(DiffFileFacts::of(viewer_.list().diffLayout().files()[file]));
    if (!self) {
        return;
    }
    const QList<DiffFile>& files = viewer_.list().diffLayout().files();
    if (file < files.size() && files[file].id == id) {
        viewer_.list().setSizes(file, sizes);
        Q_EMIT told();
    }
    askSoon();
}

} // namespace kelm
