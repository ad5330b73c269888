#include "soak/disk_model.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Stands before the target in the entry of a symbolic link; no text file of a run begins so.
const QByteArray linkMark("\0link to ", 9);

/// How much of two texts is shown around the place where they differ.
constexpr qsizetype shownBytes = 40;

QByteArray readWhole(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("\0cannot be read", 15);
}

QString excerpt(const QByteArray& bytes, qsizetype at)
{
    return QString::fromLatin1(
        bytes.mid(std::max<qsizetype>(0, at - shownBytes / 2), shownBytes).toPercentEncoding(" "));
}

QString difference(const QByteArray& expected, const QByteArray& found)
{
    const auto place = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
    const qsizetype at = place.first - expected.begin();
    return u"differs at byte %1 (%2 bytes expected, %3 found): expected \"%4\", found \"%5\""_s.arg(
        QString::number(at), QString::number(expected.size()), QString::number(found.size()), excerpt(expected, at),
        excerpt(found, at));
}

} // namespace

QMap<QString, QByteArray> DiskModel::read() const
{
    QMap<QString, QByteArray> found;
    for (const QString& folder : folders_) {
        QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            if (path.contains("/.git/"_L1)) {
                continue;
            }
            const QFileInfo info = entries.fileInfo();
            found.insert(path, info.isSymLink() ? linkMark + QFile::encodeName(info.symLinkTarget()) : readWhole(path));
        }
    }
    return found;
}

void DiskModel::learn()
{
    expected_ = read();
}

void DiskModel::expectLink(const QString& path, const QString& target)
{
    expected_[path] = linkMark + QFile::encodeName(target);
    ++revision_;
}

QString DiskModel::behindLinks(const QString& path) const
{
    const QByteArray entry = expected_.value(path);
    return entry.startsWith(linkMark) ? behindLinks(QFile::decodeName(entry.sliced(linkMark.size()))) : path;
}

std::optional<QByteArray> DiskModel::bytesOf(const QString& path) const
{
    const auto entry = expected_.find(behindLinks(path));
    return entry != expected_.end() ? std::optional(*entry) : std::nullopt;
}

void DiskModel::writeAsAnother(const QString& path, const QByteArray& bytes)
{
    const QString target = behindLinks(path);
    QDir().mkpath(QFileInfo(target).path());
    QFile file(target);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("the soak cannot write %s", qPrintable(target));
    }
    expected_[target] = bytes;
    ++revision_;
}

void DiskModel::removeAsAnother(const QString& path)
{
    if (!QFile::remove(path)) {
        qFatal("the soak cannot remove %s", qPrintable(path));
    }
    expected_.remove(path);
    ++revision_;
}

QStringList DiskModel::differences() const
{
    QStringList lines;
    const QMap<QString, QByteArray> found = read();
    for (auto entry = expected_.begin(); entry != expected_.end(); ++entry) {
        const auto other = found.find(entry.key());
        if (other == found.end()) {
            lines.append(entry.key() + u" is gone"_s);
        } else if (*other != *entry) {
            lines.append(entry.key() + u' ' + difference(*entry, *other));
        }
    }
    for (auto entry = found.begin(); entry != found.end(); ++entry) {
        if (!expected_.contains(entry.key())) {
            lines.append(entry.key() + u" should not be there"_s);
        }
    }
    return lines;
}

} // namespace kelm::soak
