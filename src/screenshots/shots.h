// What is drawn, and what is done with the window for it.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace kelm {

class AppState;
class MainWindow;

namespace screenshots {

/// What a picture is made of.
struct Stage
{
    AppState& state;
    MainWindow& window;
    /// The folder of the project that is shown.
    QString project;
};

/// One state of the window. It is drawn in each of its themes, as "<name>-<suffix>.png".
struct Shot
{
    const char* name;
    /// The files that are opened, the first of which is seen; relative ones are those of the project.
    QStringList files;
    std::function<void(Stage&)> prepare = {};
    /// The same for what only lasts as long as it is being done: it is given what takes the picture.
    std::function<void(Stage&, const std::function<void()>& takePicture)> prepareAround = {};
    /// Pixels to a point. The toolkit takes it once, at its start.
    double scale = 1;
    /// Of the window, in points; the ordinary one where it is empty.
    QSize size = {};
    /// The themes' names with the suffixes of the pictures.
    std::vector<std::pair<QString, QString>> themes = {{QStringLiteral("Monokai"), QStringLiteral("dark")},
                                                       {QStringLiteral("GitHub Light"), QStringLiteral("light")}};
    /// Whether the project is open in the sidebar.
    bool showsProject = true;
};

std::vector<Shot> shots();

/// Lets pass what was put off to the main queue, some of it by others.
void settle();

/// Waits until `isDone`, at most some seconds.
void settleUntil(const std::function<bool()>& isDone);

/// Has every run take the same time, and every snippet the same file.
void evenTimes(const Stage& stage);

} // namespace screenshots

} // namespace kelm
