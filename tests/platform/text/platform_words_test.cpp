#include "platform/text/platform_words.h"
#include "support/test_program.h"

#include <QtTest>

namespace platform_words_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// What stands on the screen for each sign of a key.
class PlatformWordsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signsAreWords_data();
    void signsAreWords();
};

void PlatformWordsTest::signsAreWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const auto row = [](const QString& text, const QString& shown) {
        QTest::newRow(qPrintable(text)) << text << shown;
    };
    row(u""_s, u""_s);
    row(u"Quick Open"_s, u"Quick Open"_s);
    row(u"⌘P"_s, u"Ctrl+P"_s);
    row(u"⇧⌘F"_s, u"Ctrl+Shift+F"_s);
    row(u"⌥⌘S"_s, u"Ctrl+Alt+S"_s);
    row(u"⌃⌥⇧⌘K"_s, u"Ctrl+Alt+Shift+K"_s);
    row(u"Toggle Bottom Panel (⌃`)"_s, u"Toggle Bottom Panel (Ctrl+`)"_s);
    row(u"⌘."_s, u"Ctrl+."_s);
    row(u"⌘/"_s, u"Ctrl+/"_s);
    row(u"Close (Esc / ⌘W)"_s, u"Close (Esc / Ctrl+W)"_s);
    row(u"Hold ⌘ and click"_s, u"Hold Ctrl and click"_s);
    row(u"⌘N and ⌘O"_s, u"Ctrl+N and Ctrl+O"_s);
    row(u"⇧"_s, u"Shift"_s);
    row(u"Reveal in Finder"_s, u"Show in File Manager"_s);
    row(u"Open it in the Finder"_s, u"Open it in the File Manager"_s);
    row(u"• Edit any line. Cmd-R runs the whole file."_s, u"• Edit any line. Ctrl+R runs the whole file."_s);
    row(u"Undo & Redo…"_s, u"Undo & Redo…"_s);
}

void PlatformWordsTest::signsAreWords()
{
    QFETCH(QString, text);
#ifdef Q_OS_MACOS
    QCOMPARE(inPlatformWords(text), text);
#else
    QTEST(inPlatformWords(text), "shown");
#endif
}

const Registered<PlatformWordsTest> registered;

} // namespace platform_words_test

#include "platform_words_test.moc"
