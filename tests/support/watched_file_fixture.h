// An open file that another program changes, and the looks at it, one by one.
#pragma once

#include "app/state/notices.h"
#include "app/state/watched_files.h"
#include "platform/events/worker_pool.h"
#include "platform/files/native_path.h"
#include "support/app_state_fixture.h"
#include "support/patience.h"

#include <cstdio>

namespace kelm {

struct WatchedFileFixture : AppStateFixture
{
    const QString gone = QStringLiteral("a.txt is no longer on disk. Its text stays here, and saving it puts it back.");
    const QString changed = QStringLiteral("a.txt has changed on disk, and here too.");

    WatchedFiles& watched() { return state.watchedFiles(); }
    Document& document() { return *state.currentDocument(); }
    QString noticeText()
    {
        const Notice* notice = state.notices().current();
        return notice != nullptr ? notice->text : QString();
    }

    /// Makes "a.txt" and opens it.
    void open(const QByteArray& text)
    {
        state.openFile(write(QStringLiteral("a.txt"), text));
        settle();
    }
    /// What another program does; the clock's grain hides no change of a text's length.
    void change(const QByteArray& text) { write(QStringLiteral("a.txt"), text); }
    QByteArray native(const QString& name) const { return nativePath(folder.filePath(name)); }
    void rename(const QString& from, const QString& to)
    {
        QCOMPARE(std::rename(native(from).constData(), native(to).constData()), 0);
    }
    void remove() { QVERIFY(QFile::remove(folder.filePath(QStringLiteral("a.txt")))); }

    /// One look, with what it finds taken.
    void lookOnce()
    {
        watched().lookAgain();
        advance(WatchedFiles::lookDelay);
    }
    void advance(std::chrono::milliseconds time)
    {
        scheduler.advance(time);
        backgroundWorkers().waitForDone();
        QCoreApplication::processEvents();
    }
    /// Looks until there is nothing more to be found out.
    void settle()
    {
        watched().lookAgain();
        QTRY_VERIFY(isSettled());
    }
    bool isSettled()
    {
        scheduler.advance(WatchedFiles::quietTime);
        return watched().isSettled();
    }
};

} // namespace kelm
