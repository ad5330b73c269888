// What saves wrote over, for a test to look at.
#pragma once

#include "app/state/replaced_files.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace kelm {

class FakeReplacedFiles final : public ReplacedFiles
{
public:
    /// What is kept stands in a folder of its own, so that a test's folder holds the test's files alone.
    FakeReplacedFiles()
    {
        // Tests may take the rights of another user.
        ::chmod(QFile::encodeName(folder_.path()).constData(), 0777);
    }

    std::optional<QUrl> keepReplaced(const QUrl& file, const QByteArray& content) override
    {
        if (isFull) {
            return std::nullopt;
        }
        files.append(file);
        kept.append(content);
        QFile copy(folder_.filePath(QString::number(kept.size())));
        if (!copy.open(QIODevice::WriteOnly) || copy.write(content) != content.size()) {
            qFatal("cannot keep the content");
        }
        return QUrl::fromLocalFile(copy.fileName());
    }

    void forget(const QUrl& url) override
    {
        forgotten.append(url);
        QFile::remove(url.toLocalFile());
    }

    QList<QUrl> files;
    QList<QByteArray> kept;
    QList<QUrl> forgotten;
    bool isFull = false;

private:
    QTemporaryDir folder_;
};

} // namespace kelm
