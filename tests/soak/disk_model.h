// What every file must hold.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace kelm::soak {

/// The exact bytes of every file below some folders, known without a look at what the editor has written. Paths are
/// absolute. A symbolic link is an entry of its own, and what is written to it goes to the file behind it.
///
/// What is in ".git" folders is not looked at.
class DiskModel
{
public:
    explicit DiskModel(QStringList folders) : folders_(std::move(folders)) {}

    /// Takes what is there now as what must be there.
    void learn();

    /// Grows whenever something else must be there.
    quint64 revision() const { return revision_; }

    /// Absent when no file must be there.
    std::optional<QByteArray> bytesOf(const QString& path) const;
    /// All files that must be there, links included, in the order of their paths.
    QStringList paths() const { return expected_.keys(); }

    /// The file must hold this from now on.
    void expect(const QString& path, const QByteArray& bytes)
    {
        expected_[behindLinks(path)] = bytes;
        ++revision_;
    }
    void expectLink(const QString& path, const QString& target);
    void expectNone(const QString& path)
    {
        expected_.remove(path);
        ++revision_;
    }
    /// The path that a write to `path` goes to.
    QString behindLinks(const QString& path) const;

    /// Changes the disk as another program does: in place, without the editor's knowledge.
    void writeAsAnother(const QString& path, const QByteArray& bytes);
    void removeAsAnother(const QString& path);

    /// What differs between disk and model, a line each; empty when all is as it must be.
    QStringList differences() const;

private:
    QMap<QString, QByteArray> read() const;

    QStringList folders_;
    QMap<QString, QByteArray> expected_;
    quint64 revision_ = 0;
};

} // namespace kelm::soak
