#include "git/viewer/view/file_sizes.h"

#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"

#include <QPointer>
#include <QTimerEvent>

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
    waiting_.empty() ? timer_.stop() : timer_.start(0, this);
}

void FileSizes::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != timer_.timerId() || waiting_.empty()) {
        timer_.stop();
        return;
    }
    // While git is asked, events may come through: another text, the end of the viewer, and this timer's own.
    timer_.stop();
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
    if (!waiting_.empty()) {
        timer_.start(0, this);
    }
}

} // namespace kelm
