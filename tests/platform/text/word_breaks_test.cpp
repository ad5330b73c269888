#include "platform/text/word_breaks.h"
#include "support/script_texts.h"
#include "support/test_program.h"

#include <QtTest>

namespace word_breaks_test {

using namespace kelm;

class WordBreaksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dictionariesPartWords_data();
    void dictionariesPartWords();
    void wordsPartBetweenCharacters();
};

void WordBreaksTest::dictionariesPartWords_data()
{
    QTest::addColumn<QString>("words");
    QTest::newRow("nothing") << QString();
    QTest::newRow("Thai") << QStringLiteral("ภาษา|ไทย");
    QTest::newRow("Khmer") << QStringLiteral("ខ្ញុំ|ស្រឡាញ់|អ្នក");
    QTest::newRow("Chinese") << QStringLiteral("今天|天气");
    QTest::newRow("Japanese") << QStringLiteral("東京|に|行く");
    QTest::newRow("a character of several units") << QStringLiteral("今\U000E0100|日|は|学校");
    QTest::newRow("Latin") << QStringLiteral("foo bar's x²");
    QTest::newRow("Korean") << QStringLiteral("변수_1의 값abc");
    QTest::newRow("Hindi") << QStringLiteral("हिन्दी में");
    QTest::newRow("a name in code") << QStringLiteral("价格_1x");
}

void WordBreaksTest::dictionariesPartWords()
{
    QFETCH(QString, words);
    std::vector<qsizetype> breaks;
    QString text;
    for (const QString& word : words.split(u'|')) {
        if (!text.isEmpty()) {
            breaks.push_back(text.size());
        }
        text += word;
    }
    QCOMPARE(wordBreaks(text), breaks);
}

void WordBreaksTest::wordsPartBetweenCharacters()
{
    test::RandomScripts random;
    for (int round = 0; round < 500; ++round) {
        const QString text = random.text(40) + QStringLiteral("ไทย");
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        for (const qsizetype at : wordBreaks(text)) {
            QVERIFY(at > 0 && at < text.size());
            QVERIFY(std::binary_search(boundaries.begin(), boundaries.end(), at));
        }
    }
}

const kelm::test::Registered<WordBreaksTest> registered;

} // namespace word_breaks_test

#include "word_breaks_test.moc"
