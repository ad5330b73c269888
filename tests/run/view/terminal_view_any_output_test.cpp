#include "run/terminal_output.h"
#include "run/view/terminal_page.h"
#include "support/test_program.h"

#include <QRandomGenerator>

namespace terminal_view_any_output_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What programs may write: bytes of all kinds, characters and parts of them, line ends, and sequences whole or cut.
QByteArray randomBytes(QRandomGenerator& random)
{
    static const QList<QByteArray> parts{"text",
                                         "\r\n",
                                         "\n",
                                         "\r",
                                         "\t",
                                         "한글",
                                         "\xed\x95",
                                         "😀😀",
                                         "\xf0\x9f\x98",
                                         "e\xcc\x81",
                                         "👩‍👩‍👧",
                                         "\x1b[31m",
                                         "\x1b[2K",
                                         "\x1b[12;4H",
                                         "\x1b]0;t",
                                         "\x07",
                                         "\x1b",
                                         "\x1b[",
                                         "\xe2\x80\xae",
                                         "\xe2\x80\xa8",
                                         "\xc2\x85",
                                         QByteArray(1, '\0'),
                                         "\xff\xfe",
                                         " $ "};
    QByteArray bytes;
    for (int count = random.bounded(0, 40); count > 0; --count) {
        if (random.bounded(4) == 0) {
            bytes.append(char(random.bounded(256)));
        } else {
            bytes.append(parts[random.bounded(int(parts.size()))]);
        }
    }
    return bytes;
}

} // namespace

/// In a terminal a command is what was typed behind the prompt, whatever was written before.
class TerminalViewAnyOutputTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNextCommandRuns();
    void piecesOfAnyLengthAreHarmless();
    void whatIsNoTextLeavesNoTrace();
    void aFolderThatVanishesIsLeft();
    void aPromptTurnsNoDirection();
};

void TerminalViewAnyOutputTest::theNextCommandRuns()
{
    TerminalPage page;
    page.showBanner();
    constexpr int seeds = 100;
    for (quint32 seed = 0; seed < seeds; ++seed) {
        if (seed % 10 == 0) {
            page.text().clear();
        }
        QRandomGenerator random(seed);
        QStringList writes;
        for (int piece = random.bounded(1, 5); piece > 0; --piece) {
            const QString name = u"piece%1"_s.arg(piece);
            QFile file(page.path(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(randomBytes(random)) >= 0);
            writes.append(u"cat "_s + name + (random.bounded(3) == 0 ? u" >&2"_s : QString()));
        }
        page.session().executeCommand(writes.join(u"; "_s));
        page.text().appendPrompt();
        page.run(u"echo ok"_s);
        QVERIFY2(page.text().text().endsWith(page.prompt() + u"echo okok\n"_s + page.prompt()),
                 qPrintable(u"seed %1: %2"_s.arg(seed).arg(page.text().text().right(100))));
        // It is drawn as well.
        QVERIFY(!page.view->grab().isNull());
    }
}

void TerminalViewAnyOutputTest::piecesOfAnyLengthAreHarmless()
{
    TerminalPage page;
    page.showBanner();
    constexpr int seeds = 100;
    for (quint32 seed = 0; seed < seeds; ++seed) {
        if (seed % 10 == 0) {
            page.text().clear();
        }
        QRandomGenerator random(seed);
        const QString output = QString::fromUtf8(randomBytes(random));
        TerminalOutput pieces;
        for (qsizetype from = 0; from < output.size();) {
            const qsizetype length = std::min<qsizetype>(random.bounded(1, 6), output.size() - from);
            page.text().appendOutput(pieces.output(output.sliced(from, length)));
            from += length;
        }
        page.text().appendPrompt();
        page.run(u"echo ok"_s);
        QVERIFY2(page.text().text().endsWith(page.prompt() + u"echo okok\n"_s + page.prompt()),
                 qPrintable(u"seed %1: %2"_s.arg(seed).arg(page.text().text().right(100))));
    }
}

void TerminalViewAnyOutputTest::whatIsNoTextLeavesNoTrace()
{
    // As a program writes it that wants a screen.
    const QString output =
        u"\x1b[?1049h\x1b[22;0;0t\x1b[1;24r\x1b(B\x1b[m\x1b[4l\x1b]0;title\x07\x1b[H\x1b[2Jfirst\x1b[K\r\n"
        "\x1b[7msecond\x1b[0m 한글\x1b[24;1H"_s;
    const auto picture = [](const QStringList& pieces) {
        TerminalTextView view;
        view.resize(400, 120);
        TerminalOutput command;
        for (const QString& piece : pieces) {
            view.appendOutput(command.output(piece));
        }
        return view.grab().toImage();
    };
    const QImage plain = picture({u"first\r\nsecond 한글"_s});
    QVERIFY(plain != picture({u"first\r\nsecond"_s}));
    QCOMPARE(picture({output}), plain);
    for (qsizetype cut = 1; cut < output.size(); ++cut) {
        QVERIFY2(picture({output.first(cut), output.sliced(cut)}) == plain, qPrintable(u"cut at %1"_s.arg(cut)));
    }
}

void TerminalViewAnyOutputTest::aFolderThatVanishesIsLeft()
{
    TerminalPage page;
    page.showBanner();
    QDir(page.home()).mkdir(u"gone"_s);
    page.run(u"cd gone"_s);
    QVERIFY(QDir().rmdir(page.path(u"gone"_s)));
    page.run(u"echo lost"_s);
    const QString prompt = TerminalSession::promptText(page.path(u"gone"_s));
    QVERIFY(page.written().contains(u"echo lost\nError: "_s));
    QVERIFY(page.written().endsWith(prompt));
    page.run(u"cd gone"_s);
    QVERIFY(page.written().endsWith(u"\ncd: no such directory: gone"_s + prompt));
    page.run(u"cd .."_s);
    page.run(u"echo ok"_s);
    QVERIFY(page.written().endsWith(u"echo okok\n"_s + page.prompt()));
}

void TerminalViewAnyOutputTest::aPromptTurnsNoDirection()
{
    TerminalPage page;
    page.showBanner();
    const QString name = u"a\u202eb"_s;
    QDir(page.home()).mkdir(name);
    page.run(u"cd "_s + name);
    const QString prompt = TerminalSession::promptText(page.path(u"a\u27e8U+202E\u27e9b"_s));
    QVERIFY(page.written().endsWith(prompt));
    // The folder is the one that is there, and the prompt's length is its own.
    QCOMPARE(page.session().currentDirectory(), page.path(name));
    page.run(u"echo ok"_s);
    QVERIFY(page.written().endsWith(u"echo okok\n"_s + prompt));
}

const kelm::test::Registered<TerminalViewAnyOutputTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_view_any_output_test

#include "terminal_view_any_output_test.moc"
