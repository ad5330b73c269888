#include "run/view/front_trimmer.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/text_storage.h"

#include <QSignalSpy>

namespace front_trimmer_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class FrontTrimmerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theEndOfAnyTextIsKept();
    void whatIsKeptBeginsWithALine();
    void aLineWithoutEndKeepsItsEnd();
    void aPairIsNotCut();
    void aCharacterIsNotCut();
    void whoEditsTheFirstLineLosesNothing();
    void noEditReachesWhatIsKept();
};

void FrontTrimmerTest::theEndOfAnyTextIsKept()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        const qsizetype most = 60 + random.below(300);
        const qsizetype slack = 40 + random.below(40);
        TextStorage storage;
        FrontTrimmer trimmer(storage, most, slack);
        QString all;
        for (int piece = 0; piece < 60; ++piece) {
            const QString text = random.text(random.below(8) == 0 ? 200 : 12);
            all += text;
            storage.replace({storage.length(), 0}, text);
            trimmer.trim();
            const QString first = trimmer.letGo() > 0 ? letGoText(trimmer.letGo()) : QString();
            QVERIFY(storage.text().startsWith(first));
            const QString kept = storage.text().sliced(first.isEmpty() ? 0 : first.size() + 1);
            QCOMPARE(kept.size() + trimmer.letGo(), all.size());
            QCOMPARE(kept, all.last(kept.size()));
            QVERIFY(kept.size() >= std::min(most, all.size()));
            QVERIFY(kept.size() <= most + slack + first.size());
        }
    }
}

void FrontTrimmerTest::whatIsKeptBeginsWithALine()
{
    TextStorage storage;
    FrontTrimmer trimmer(storage, 100, 50);
    for (int line = 0; line < 100; ++line) {
        storage.replace({storage.length(), 0}, u"line %1\n"_s.arg(line));
        trimmer.trim();
    }
    const QStringList lines = storage.text().split(u'\n');
    QVERIFY(lines[0].startsWith(u"[The first "_s));
    for (qsizetype at = 1; at + 1 < lines.size(); ++at) {
        QCOMPARE(lines[at], u"line %1"_s.arg(100 + at + 1 - lines.size()));
    }
}

void FrontTrimmerTest::aLineWithoutEndKeepsItsEnd()
{
    TextStorage storage;
    FrontTrimmer trimmer(storage, 100, 50);
    storage.setText(u"ab"_s.repeated(1000));
    QCOMPARE(trimmer.trim(), letGoText(1900).size());
    QCOMPARE(storage.text(), letGoText(1900) + u' ' + u"ab"_s.repeated(50));
    storage.replace({storage.length(), 0}, u"cd"_s.repeated(50) + u'\n' + u"ef"_s.repeated(50));
    trimmer.trim();
    QCOMPARE(storage.text(), letGoText(2101) + u'\n' + u"ef"_s.repeated(50));
}

void FrontTrimmerTest::aPairIsNotCut()
{
    TextStorage storage;
    FrontTrimmer trimmer(storage, 101, 50);
    storage.setText(u"😀"_s.repeated(1000));
    trimmer.trim();
    QCOMPARE(storage.text(), letGoText(1898) + u' ' + u"😀"_s.repeated(51));
}

void FrontTrimmerTest::aCharacterIsNotCut()
{
    TextStorage storage;
    FrontTrimmer trimmer(storage, 101, 50);
    storage.setText(u"🇰🇷"_s.repeated(500));
    trimmer.trim();
    QCOMPARE(storage.text(), letGoText(1896) + u' ' + u"🇰🇷"_s.repeated(26));

    // One that is longer than what may stay over goes with the rest.
    trimmer.reset();
    storage.setText(u'e' + u"\u0301"_s.repeated(2000));
    trimmer.trim();
    QCOMPARE(storage.text(), letGoText(1900) + u' ' + u"\u0301"_s.repeated(101));
}

void FrontTrimmerTest::whoEditsTheFirstLineLosesNothing()
{
    TextStorage storage;
    FrontTrimmer trimmer(storage, 100, 50);
    storage.setText(u"0123456789"_s.repeated(30));
    trimmer.trim();
    const qsizetype before = storage.length();
    storage.replace({0, 1}, u"typed into the first line"_s);
    storage.replace({storage.length(), 0}, u"x"_s.repeated(100));
    trimmer.trim();
    // The line that was edited has gone with the text before it.
    QCOMPARE(trimmer.letGo(), 200 + before + 24);
    QCOMPARE(storage.text(), letGoText(trimmer.letGo()) + u' ' + u"x"_s.repeated(100));
}

void FrontTrimmerTest::noEditReachesWhatIsKept()
{
    TextStorage storage;
    FrontTrimmer trimmer(storage, 100, 50);
    storage.setText(u"0123456789\n"_s.repeated(30));
    std::vector<TextEdit> edits;
    connect(&storage, &TextStorage::edited, this, [&](const TextEdit& edit) { edits.push_back(edit); });
    trimmer.trim();
    QCOMPARE(edits.size(), std::size_t(1));
    QVERIFY(edits.front().range.end() <= 330 - 100);
    trimmer.trim();
    QCOMPARE(edits.size(), std::size_t(1));
    // A line that goes on behind the cut is not edited together with others.
    storage.replace({storage.length(), 0}, u"long"_s.repeated(100));
    std::vector<qsizetype> removedWithTheLast;
    connect(&storage, &TextStorage::edited, this, [&](const TextEdit& edit) {
        if (edit.firstLine + edit.linesAdded == storage.lines().lineCount()) {
            removedWithTheLast.push_back(edit.linesRemoved);
        }
    });
    trimmer.trim();
    QCOMPARE(removedWithTheLast, std::vector<qsizetype>{1});
    QCOMPARE(storage.text(), letGoText(trimmer.letGo()) + u'\n' + u"long"_s.repeated(25));
}

const kelm::test::Registered<FrontTrimmerTest> registered;

} // namespace front_trimmer_test

#include "front_trimmer_test.moc"
