// Being told when files change.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>

#include <memory>

class QFileSystemWatcher;
class QSocketNotifier;

namespace kelm {

/// Tells that one of some files may have changed: was written to, replaced, moved, removed or made again, or that a
/// symbolic link on the way to it was. It watches their folders, where all of that shows, and where a folder is not
/// there the next one above it. Nothing is read.
///
/// What it tells may be about nothing, and a change behind a network or by another name of the file can pass it by:
/// whoever needs to be sure looks for himself now and then. Main thread only.
class FileWatch final : public QObject
{
    Q_OBJECT

public:
    explicit FileWatch(QObject* parent = nullptr);
    ~FileWatch() override;

    /// The files, by paths in the system's bytes, in the place of those before. To be called again after `changed`,
    /// since links may lead elsewhere and folders may have come or gone.
    void setFiles(const QList<QByteArray>& nativePaths);

Q_SIGNALS:
    void changed();

private:
    struct System;

    void add(const QByteArray& nativePath);
    void addFolder(QByteArray folder, const QByteArray& name);
    void readEvents();

    std::unique_ptr<System> system_;
};

} // namespace kelm
