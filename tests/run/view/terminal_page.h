// A terminal page in a window, with a home and a clock of its own.
#pragma once

#include "platform/style/view/style.h"
#include "run/view/terminal_text_view.h"
#include "run/view/terminal_view.h"
#include "support/app_state_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QInputMethodEvent>
#include <QTimer>
#include <QtTest>

namespace kelm::test {

struct TerminalPage
{
    TerminalPage() : homeBefore(qgetenv("HOME")), folderBefore(QDir::currentPath())
    {
        qputenv("HOME", QFile::encodeName(home()));
        style::installOn(*qApp);
        view = std::make_unique<TerminalView>(
            TerminalSession::Services{app.scheduler, app.notificationCenter, {QStringLiteral("/bin/sh")}, [this] {
                                          app.state.setShowBottomPanel(false);
                                      }});
        view->resize(640, 240);
        view->show();
        view->activateWindow();
        view->textView().setFocus();
        isShown = QTest::qWaitForWindowActive(view.get());
    }
    ~TerminalPage()
    {
        view.reset();
        qputenv("HOME", homeBefore);
        QDir::setCurrent(folderBefore);
    }
    TerminalPage(const TerminalPage&) = delete;
    TerminalPage& operator=(const TerminalPage&) = delete;

    QString home() const { return QFileInfo(folder.path()).canonicalFilePath(); }
    QString path(const QString& name) const { return home() + u'/' + name; }
    QString prompt() const { return TerminalSession::promptText(home()); }
    void makeFile(const QString& name) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("cannot write a file of the test");
        }
    }

    TerminalTextView& text() const { return view->textView(); }
    TerminalSession& session() const { return view->session(); }
    /// What stands behind the banner and the first prompt.
    QString written() const { return text().text().sliced(start); }

    void showBanner()
    {
        app.scheduler.advance(std::chrono::milliseconds(100));
        start = text().text().size();
    }
    /// Types by keys, and what keys do not have by an input method.
    void type(const QString& typed) const
    {
        for (const QChar letter : typed) {
            if (letter.unicode() < 0x80) {
                QTest::keyClick(&text(), letter.toLatin1());
            } else {
                QInputMethodEvent event;
                event.setCommitString(letter);
                QCoreApplication::sendEvent(&text(), &event);
            }
        }
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const { QTest::keyClick(&text(), key, modifiers); }
    /// Types a line and runs it to its end.
    void run(const QString& line) const
    {
        type(line);
        press(Qt::Key_Return);
    }
    /// Does something as soon as a command is being waited for and has written `output`.
    void onceRunning(const std::function<void()>& work, const QString& output = {})
    {
        auto* timer = new QTimer(view.get());
        QObject::connect(timer, &QTimer::timeout, view.get(), [this, timer, work, output] {
            if (session().isBusy() && written().contains(output)) {
                timer->stop();
                work();
            }
        });
        timer->start(1);
    }
    /// A line that waits for the file "gate".
    QString waitingLine() const
    {
        return QStringLiteral(
            "n=0; while [ ! -e gate ] && [ $n -lt 2000 ]; do sleep 0.01; n=$((n+1)); done; echo through");
    }
    void openGate() const { makeFile(QStringLiteral("gate")); }

    QTemporaryDir folder;
    QByteArray homeBefore;
    QString folderBefore;
    AppStateFixture app;
    std::unique_ptr<TerminalView> view;
    qsizetype start = 0;
    bool isShown = false;
};

} // namespace kelm::test
