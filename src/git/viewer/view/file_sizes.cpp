#include "git/viewer/view/file_sizes.h"

#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"

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
    const qsizetype file = waiting_.back();
    waiting_.pop_back();
    const DiffFileSizes sizes = ask_(DiffFileFacts::of(viewer_.list().diffLayout().files()[file]));
    // While git was asked, another text may have come.
    if (file < viewer_.list().diffLayout().files().size()) {
        viewer_.list().setSizes(file, sizes);
        Q_EMIT told();
    }
}

} // namespace kelm
