#include "git/viewer/untracked_file.h"

#include "git/diff/file_facts.h"
#include "platform/files/file_identity.h"
#include "platform/files/native_path.h"
#include "platform/files/start_of_file.h"
#include "platform/files/utf8_decoding.h"
#include "platform/files/utf8_file.h"
#include "platform/text/shown_name.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("UntrackedFile", text);
}

QString addedText(const QString& text, const QString& name)
{
    const bool isEnded = text.endsWith(u'\n');
    const qsizetype lines = text.count(u'\n') + (isEnded ? 0 : 1);
    QString diff = u"diff --git a/%1 b/%1\nnew file mode 100644\n--- /dev/null\n+++ b/%1\n@@ -0,0 +1"_s.arg(name);
    diff += lines == 1 ? u" @@"_s : u",%1 @@"_s.arg(lines);
    for (const QStringView line : QStringView(text).chopped(isEnded ? 1 : 0).tokenize(u'\n')) {
        diff += u"\n+"_s;
        diff += line;
    }
    return diff + (isEnded ? u"\n"_s : u"\n\\ No newline at end of file\n"_s);
}

} // namespace

UntrackedFile UntrackedFile::read(const QString& path, const QString& shownName)
{
    const QFileInfo info(path);
    if (info.isSymLink()) {
        return {{}, tr("Untracked link to %1").arg(kelm::shownName(info.symLinkTarget()))};
    }
    if (info.isDir()) {
        return {{}, tr("Untracked folder")};
    }
    const auto bytes = startOfFile(path, most);
    if (!bytes) {
        return {{}, tr("Untracked file, which cannot be read")};
    }
    if (bytes->isEmpty()) {
        return {{}, tr("Untracked empty file")};
    }
    // A cut in the middle of a character, or of a line, would show what is not in the file.
    const std::optional<FileIdentity> there = identityOf(nativePath(path));
    const qint64 size = there ? there->size : bytes->size();
    const bool isCut = bytes->size() == most && size > most;
    const qsizetype lines = isCut ? bytes->lastIndexOf('\n') + 1 : bytes->size();
    const qsizetype end = lines > 0 ? lines : bytes->size() - begunUtf8AtEnd(*bytes);
    const auto text = decodeUtf8Text(QByteArrayView(*bytes).first(end));
    if (!text || text->isEmpty() || text->contains(QChar(u'\0'))) {
        return {{}, tr("Untracked binary file, %1").arg(sizeInWords(size))};
    }
    if (lines == 0) {
        return {{}, tr("Untracked file, %1, with a line that is too long to show").arg(sizeInWords(size))};
    }
    // A line feed in the name would begin another line of the diff.
    return {addedText(*text, QString(shownName).replace(u'\n', QChar(0x2424))), {}};
}

} // namespace kelm
