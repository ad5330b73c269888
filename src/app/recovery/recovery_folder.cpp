#include "app/recovery/recovery_folder.h"

#include "app/recovery/replaced_bytes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr mode_t ownersFolder = 0700;
constexpr mode_t ownersFile = 0600;
const QString copySuffix = u".copy"_s;
const QString lockSuffix = u".lock"_s;

QString numberName(quint64 number)
{
    return u"%1"_s.arg(number, 16, 16, QLatin1Char('0'));
}

/// The number of the program that a file of the folder belongs to: what its name begins with.
QString sessionOf(const QString& name)
{
    const qsizetype end =
        std::find_if(name.begin(), name.end(), [](QChar c) { return c == u'-' || c == u'.'; }) - name.begin();
    return name.left(end);
}

/// Opens the file of a lock, for this process alone and nowhere but in its folder. It is made if `more` says so.
OpenFile openLock(const QByteArray& path, int more = 0)
{
    return OpenFile(::open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | more, ownersFile));
}

/// Opens the lock of another program and takes it without waiting, together with all who look as well; closed when that
/// program has it.
OpenFile tryLock(const QByteArray& path)
{
    OpenFile file = openLock(path);
    return file.isOpen() && ::flock(file.get(), LOCK_SH | LOCK_NB) == 0 ? std::move(file) : OpenFile();
}

/// Whether an open file is still in its folder.
bool hasName(const OpenFile& file)
{
    struct stat status = {};
    return ::fstat(file.get(), &status) == 0 && status.st_nlink > 0;
}

} // namespace

/// A file of the folder.
struct RecoveryFolder::Found
{
    QString id;
    qint64 size = 0;
    CopySummary summary;
};

RecoveryFolder::RecoveryFolder(QString path, const Bounds& bounds)
    : path_(std::move(path)), bounds_(bounds), session_(numberName(QRandomGenerator::system()->generate64()))
{}

RecoveryFolder::~RecoveryFolder()
{
    const QStringList names{session_ + u"-*"_s};
    if (lock_.isOpen() && QDir(path_).entryList(names, QDir::Files | QDir::Hidden).isEmpty()) {
        ::unlink(pathOf(session_ + lockSuffix).constData());
    }
}

QString RecoveryFolder::newId()
{
    return session_ + u'-' + numberName(++lastId_);
}

bool RecoveryFolder::isOurs(const QString& id) const
{
    return sessionOf(id) == session_;
}

QByteArray RecoveryFolder::pathOf(const QString& name) const
{
    return QFile::encodeName(path_ + u'/' + name);
}

bool RecoveryFolder::begin()
{
    const QByteArray folder = QFile::encodeName(path_);
    if (lock_.isOpen() && hasName(lock_)) {
        return true;
    }
    QDir().mkpath(QFileInfo(path_).path());
    if (::mkdir(folder.constData(), ownersFolder) != 0 && errno != EEXIST) {
        return false;
    }
    // Also one that was there, or that the mask of the process has left open.
    if (::chmod(folder.constData(), ownersFolder) != 0) {
        return false;
    }
    const QByteArray path = pathOf(session_ + lockSuffix);
    for (;;) {
        OpenFile file = openLock(path, O_CREAT);
        if (!file.isOpen()) {
            return false;
        }
        // Another program may hold it for the moment in which it looks whether it is in use.
        if (::flock(file.get(), LOCK_EX) != 0) {
            return false;
        }
        if (hasName(file)) {
            lock_ = std::move(file);
            return true;
        }
        // And may have taken it for one that was left behind.
    }
}

OpenFile RecoveryFolder::lockOfEnded(const QString& session) const
{
    const QByteArray path = pathOf(session + lockSuffix);
    if (OpenFile lock = tryLock(path); lock.isOpen() || ::access(path.constData(), F_OK) == 0) {
        return lock;
    }
    // There is no lock. Whoever else looks after the copies at this moment makes the same one.
    openLock(path, O_CREAT);
    return tryLock(path);
}

std::optional<FileError> RecoveryFolder::write(const QString& id, const CopyHeader& header, const TextTree& text)
{
    if (!begin()) {
        return FileError{u"%1: %2"_s.arg(path_, QString::fromLocal8Bit(std::strerror(errno)))};
    }
    return copies_.try_emplace(id, pathOf(id + copySuffix)).first->second.write(header, text);
}

void RecoveryFolder::remove(const QString& id)
{
    copies_.erase(id);
    const OpenFile lock = isOurs(id) ? OpenFile() : lockOfEnded(sessionOf(id));
    if (isOurs(id) || lock.isOpen()) {
        ::unlink(pathOf(id + copySuffix).constData());
    }
}

QList<RecoveryFolder::Found> RecoveryFolder::find() const
{
    QList<Found> found;
    std::map<QString, OpenFile> locks;
    const QDir folder(path_);
    for (const QString& name : folder.entryList({u"*-*"_s + copySuffix}, QDir::Files | QDir::NoSymLinks, QDir::Name)) {
        const QString session = sessionOf(name);
        if (session != session_ && !locks.contains(session)) {
            locks.emplace(session, lockOfEnded(session));
        }
        if (session != session_ && !locks.at(session).isOpen()) {
            continue;
        }
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            continue;
        }
        if (std::optional<CopySummary> summary = readCopySummary(file)) {
            found.append({name.chopped(copySuffix.size()), file.size(), *std::move(summary)});
        }
    }
    // Of one program's and one millisecond, what was named last is the latest.
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        return std::tie(a.summary.header.time, a.id) > std::tie(b.summary.header.time, b.id);
    });
    return found;
}

QList<UnsavedText> RecoveryFolder::texts()
{
    QList<UnsavedText> texts;
    for (const Found& each : find()) {
        texts.append({each.id, each.summary.header, each.summary.firstWords});
    }
    return texts;
}

std::optional<CopyContent> RecoveryFolder::take(const QString& id, const QString& newId)
{
    const OpenFile lock = isOurs(id) ? OpenFile() : lockOfEnded(sessionOf(id));
    if ((!isOurs(id) && !lock.isOpen()) || !begin()) {
        return std::nullopt;
    }
    QFile file(QFile::decodeName(pathOf(id + copySuffix)));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return std::nullopt;
    }
    std::optional<CopyContent> content = readCopy(file);
    if (!content || ::rename(pathOf(id + copySuffix).constData(), pathOf(newId + copySuffix).constData()) != 0) {
        return std::nullopt;
    }
    copies_.erase(id);
    return content;
}

void RecoveryFolder::prune(const QList<QString>& kept, qint64 now)
{
    qsizetype copies = 0;
    qint64 bytes = 0;
    for (const Found& each : find()) {
        ++copies;
        bytes += each.size;
        const bool isBeyond = copies > bounds_.copies || bytes > bounds_.bytes;
        if (isBeyond && now - each.summary.header.time >= bounds_.leastAge && !kept.contains(each.id)) {
            remove(each.id);
            --copies;
            bytes -= each.size;
        }
    }
    // What was left half written, and the locks of those who have left nothing.
    const QDir folder(path_);
    for (const QString& name : folder.entryList({u"*"_s + lockSuffix, u"*.part"_s}, QDir::Files | QDir::NoSymLinks)) {
        const QString session = sessionOf(name);
        const OpenFile lock = session == session_ ? OpenFile() : lockOfEnded(session);
        if (!lock.isOpen()) {
            continue;
        }
        if (!name.endsWith(lockSuffix) || folder.entryList({session + u"-*"_s}, QDir::Files).isEmpty()) {
            ::unlink(pathOf(name).constData());
        }
    }
}

void RecoveryFolder::takeReplaced(qint64 now)
{
    takeLeftBytes(path_, now, [this](const ReplacedBytes& bytes, qint64 time) {
        const QString id = newId();
        const ShownBytes shown = ShownBytes::of(bytes.content);
        // Bytes that the text does not give again are not saved over the file's.
        CopyHeader header{bytes.url.isEmpty() || shown.isOther ? std::nullopt : std::optional(bytes.url), time};
        header.isReplaced = true;
        const bool isKept = !write(id, header, TextTree(shown.text)).has_value();
        letGo(id);
        return isKept;
    });
}

} // namespace kelm
