// What the editor's start is compared with: an empty window of the toolkit.
#include "workbench/first_paint.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(1200, 800);
    kelm::bench::QuitAfterFirstPaint quit;
    window.installEventFilter(&quit);
    window.show();
    return QApplication::exec();
}
