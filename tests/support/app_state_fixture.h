// An application state in a temporary folder, with everything around it faked.
#pragma once

#include "app/state/app_state.h"
#include "support/captured_log.h"
#include "support/fake_file_panels.h"
#include "support/fake_replaced_files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace kelm {

struct AppStateFixture
{
    QTemporaryDir folder;
    FakeFilePanels filePanels;
    UserDefaults userDefaults{folder.filePath(QStringLiteral("store.conf"))};
    ManualScheduler scheduler;
    NotificationCenter notificationCenter;
    CapturedLog log;
    FakeReplacedFiles replaced;
    AppState state{{filePanels,
                    userDefaults,
                    scheduler,
                    notificationCenter,
                    log,
                    ProcessRunner::sharedSystem(),
                    ExecutableSearch(ProcessRunner::system()),
                    {},
                    &replaced}};

    QUrl url(const QString& name) const { return QUrl::fromLocalFile(folder.filePath(name)); }

    /// Makes a file in the folder and returns its URL.
    QUrl write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot set up the file");
        }
        return url(name);
    }

    QByteArray bytesOf(const QString& name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    /// Opens new tabs that hold the texts.
    void openTabs(const QStringList& texts)
    {
        for (const QString& text : texts) {
            state.openSnippet(text, Language::plainText, std::nullopt);
        }
    }

    QStringList openTexts() const
    {
        QStringList texts;
        for (const auto& document : state.documents()) {
            texts << document->content();
        }
        return texts;
    }
};

} // namespace kelm
