// The files of a project, in the order in which they are searched.
#pragma once

#include <QByteArray>
#include <QList>

#include <functional>
#include <memory>

namespace kelm {

/// Goes through the regular files below a folder, folder by folder: the files of one as the system lists them, then
/// those of its folders. Hidden files and folders are left out, symbolic links are not followed, and what cannot be
/// read is passed over. One thread at a time.
class ProjectWalk
{
public:
    /// The path of `root` ends with a slash. `isCancelled` is asked at each entry, and ends the walk.
    ProjectWalk(QByteArray root, std::function<bool()> isCancelled);
    ~ProjectWalk();
    ProjectWalk(const ProjectWalk&) = delete;
    ProjectWalk& operator=(const ProjectWalk&) = delete;

    /// The paths of the next files, `count` at most; none when all have been given.
    QList<QByteArray> next(qsizetype count);

private:
    struct Folder;

    bool openNext();
    void closeFolder();

    std::function<bool()> isCancelled_;
    // A list instead of a call within a call: folders may be nested as deep as the disk likes.
    QList<QByteArray> pending_;
    std::unique_ptr<Folder> folder_;
};

} // namespace kelm
