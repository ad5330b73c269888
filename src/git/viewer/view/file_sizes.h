// Asking for the sizes of the binary files of a shown diff.
#pragma once

#include "git/diff/file_facts.h"

#include <QObject>

#include <functional>
#include <vector>

namespace kelm {

class DiffViewer;

/// Asks for the sizes of each binary file that a viewer shows, one file between two looks at the events, and tells the
/// viewer's list. Each text that the viewer shows is asked about anew.
class FileSizes final : public QObject
{
    Q_OBJECT

public:
    using Ask = std::function<DiffFileSizes(const DiffFileFacts& facts)>;

    /// The viewer outlives it.
    FileSizes(DiffViewer& viewer, Ask ask);

Q_SIGNALS:
    /// The sizes of a file have been told to the list.
    void told();

private:
    void begin();
    void askSoon();
    void askNext();

    DiffViewer& viewer_;
    Ask ask_;
    /// The files still to be asked about, the first one last.
    std::vector<qsizetype> waiting_;
    /// The next look is queued.
    bool isQueued_ = false;
};

} // namespace kelm
