// Places in files that are to be shown when their files are.
#pragma once

#include "text/storage/text_position.h"

#include <QHash>
#include <QObject>
#include <QUrl>

namespace kelm {

class AppState;
class EditorArea;

/// Puts the caret at a place when the tab of its file is first seen, which may be later: a very large file is still
/// read, and of several files one is seen at a time. A place is forgotten with its tab. Main thread only.
class PlacesToShow final : public QObject
{
    Q_OBJECT

public:
    /// Both outlive it.
    PlacesToShow(AppState& appState, EditorArea& editorArea);

    /// For a file that was opened just now; the last place that was asked for holds.
    void add(const QUrl& file, LineAndColumn place);

private:
    /// Once what happens now is over, so that the editor stands and has its size.
    void showSoon();
    void show();
    void forgetClosed();

    AppState& appState_;
    EditorArea& editorArea_;
    QHash<QUrl, LineAndColumn> places_;
};

} // namespace kelm
