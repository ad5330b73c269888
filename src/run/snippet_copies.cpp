#include "run/snippet_copies.h"

#include "platform/files/atomic_file.h"
#include "platform/files/open_file.h"
#include "platform/files/standard_paths.h"
#include "platform/files/utf8_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <fcntl.h>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString namePrefix = u"temp_"_s;

/// Where a note stands of each copy, by the copy's name. A note holds the path, and is locked for as long as the
/// program lives that wrote it.
QString notesFolder()
{
    return standardPaths::savedState() + u"/snippets"_s;
}

QString noteOf(const QString& path)
{
    return notesFolder() + u'/' + QFileInfo(path).fileName();
}

/// The copies of this program with their notes.
std::map<QString, OpenFile>& copies()
{
    static std::map<QString, OpenFile> all;
    return all;
}

bool lock(const OpenFile& file)
{
    return file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

/// A note that could not be written is none: the copy is removed by this program alone then.
OpenFile writeNote(const QString& path)
{
    constexpr mode_t ownerOnly = 0700;
    const QByteArray folder = QFile::encodeName(notesFolder());
    QDir().mkpath(QFileInfo(notesFolder()).path());
    ::mkdir(folder.constData(), ownerOnly);
    OpenFile note(::open(QFile::encodeName(noteOf(path)).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                         S_IRUSR | S_IWUSR));
    if (lock(note)) {
        const QByteArray bytes = QFile::encodeName(path);
        note.writeAll(bytes.constData(), bytes.size());
    }
    return note;
}

std::optional<FileError> writePrivately(const QString& path, const QString& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner)) {
        return FileError{u"%1: %2"_s.arg(path, file.errorString())};
    }
    file.close();
    return writeAtomically(path, encodeUtf8Text(text));
}

} // namespace

std::variant<QString, FileError> makeSnippetCopy(const QString& code, Language language)
{
    const QString unique = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString path = u"%1/%2%3.%4"_s.arg(QDir::tempPath(), namePrefix, unique, language.fileExtension());
    copies().emplace(path, writeNote(path));
    if (auto error = writePrivately(path, code)) {
        removeSnippetCopy(path);
        return *std::move(error);
    }
    return path;
}

void removeSnippetCopy(const QString& path)
{
    QFile::remove(path);
    QFile::remove(noteOf(path));
    copies().erase(path);
}

void removeSnippetCopies()
{
    while (!copies().empty()) {
        removeSnippetCopy(QString(copies().begin()->first));
    }
}

void removeAbandonedSnippetCopies()
{
    const QDir folder(notesFolder());
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
        const OpenFile note = OpenFile::openForReading(QFile::encodeName(folder.filePath(name)));
        if (!lock(note)) {
            continue;
        }
        const QString path = QFile::decodeName(note.readAll().value_or(QByteArray()));
        // Whatever else got there by whatever way is nobody's copy.
        const QFileInfo copy(path);
        if (name.startsWith(namePrefix) && copy.fileName() == name && copy.isFile() && !copy.isSymLink()) {
            QFile::remove(path);
        }
        QFile::remove(folder.filePath(name));
    }
}

} // namespace kelm
