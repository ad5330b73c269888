// The editor's start, up to its first painted window with the files of the command line.
#include "editor/view/editor_container_view.h"
#include "platform/style/view/style.h"
#include "text/view/text_view.h"
#include "workbench/first_paint.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    kelm::style::installOn(application);
    kelm::KelmPaneApp app;
    app.start(QApplication::arguments().mid(1));
    kelm::bench::QuitAfterFirstPaint quit;
    // Painted last of all: the text itself.
    app.window().editorArea().currentEditor()->textView().viewport()->installEventFilter(&quit);
    return QApplication::exec();
}
