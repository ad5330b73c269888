#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/text_storage.h"

#include <QSignalSpy>
#include <QtTest>

namespace text_storage_test {

using namespace kelm;

class TextStorageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyUnitComesBackAsItWasPut();
    void rangesOutsideTheTextAreClamped();
    void lineRangesIncludeTerminators_data();
    void lineRangesIncludeTerminators();
    void oneBracketGivesOneSignalOverAllItsEdits();
    void anEditThatChangesNothingIsSilent();
    void aSnapshotStaysAsItIs();
    void coloursAreToldOnceAndMovedByEdits();
    void anotherTextHasNoColours();
    void randomBracketsAgreeWithAPlainString();
};

void TextStorageTest::everyUnitComesBackAsItWasPut()
{
    QString text = QStringLiteral("\ufeffa\r\nb\rc\u00a0\u2028\u0085\ufdd0😀");
    text += QChar(0);
    text += QChar(0xd800);
    TextStorage storage;
    storage.setText(text);
    storage.replace({1, 0}, u"x");
    storage.replace({1, 1}, u"");
    QCOMPARE(storage.text(), text);
}

void TextStorageTest::rangesOutsideTheTextAreClamped()
{
    TextStorage storage;
    storage.replace({5, 5}, u"ab");
    QCOMPARE(storage.text(), QStringLiteral("ab"));
    storage.replace({1, 100}, u"c");
    QCOMPARE(storage.text(), QStringLiteral("ac"));
    QCOMPARE(storage.substring({1, 9}), QStringLiteral("c"));
    QCOMPARE(storage.substring({9, 9}), QString());
}

void TextStorageTest::lineRangesIncludeTerminators_data()
{
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    // "ab\r\n" "c\n" ""
    QTest::newRow("in the first line") << 1 << 0 << 0 << 4;
    QTest::newRow("between the units of a pair") << 3 << 0 << 0 << 4;
    QTest::newRow("at the second line's start") << 4 << 0 << 4 << 6;
    QTest::newRow("the whole first line does not touch the second") << 0 << 4 << 0 << 4;
    QTest::newRow("over both") << 1 << 4 << 0 << 6;
    QTest::newRow("the empty last line") << 6 << 0 << 6 << 6;
}

void TextStorageTest::lineRangesIncludeTerminators()
{
    QFETCH(int, location);
    QFETCH(int, length);
    QFETCH(int, start);
    QFETCH(int, end);
    TextStorage storage;
    storage.setText(QStringLiteral("ab\r\nc\n"));
    QCOMPARE(storage.lineRange({location, length}), TextRange::between(start, end));
}

void TextStorageTest::oneBracketGivesOneSignalOverAllItsEdits()
{
    TextStorage storage;
    storage.setText(QStringLiteral("one\ntwo\nthree\n"));
    QSignalSpy edited(&storage, &TextStorage::edited);
    const quint64 revision = storage.revision();
    {
        const EditingBracket bracket(storage);
        storage.replace({9, 0}, u"X\nY");
        storage.replace({1, 1}, u"");
    }
    QCOMPARE(edited.size(), 1);
    const auto edit = edited.first().first().value<TextEdit>();
    QCOMPARE(edit.range, (TextRange{1, 8}));
    QCOMPARE(edit.newLength, 10);
    QCOMPARE(edit.firstLine, 0);
    QCOMPARE(edit.linesRemoved, 3);
    QCOMPARE(edit.linesAdded, 4);
    QVERIFY(storage.revision() > revision);
    QCOMPARE(storage.text(), QStringLiteral("oe\ntwo\ntX\nYhree\n"));
}

void TextStorageTest::anEditThatChangesNothingIsSilent()
{
    TextStorage storage;
    QSignalSpy edited(&storage, &TextStorage::edited);
    storage.replace({0, 0}, u"");
    QCOMPARE(edited.size(), 0);
    QCOMPARE(storage.revision(), quint64(0));
}

void TextStorageTest::aSnapshotStaysAsItIs()
{
    TextStorage storage;
    storage.setText(QString(10000, u'x'));
    const TextTree before = storage.snapshot();
    storage.replace({5000, 3}, u"abc");
    const TextTree between = storage.snapshot();
    storage.setText(u"another");
    QCOMPARE(before.toString(), QString(10000, u'x'));
    QCOMPARE(between.substring({4999, 5}), QStringLiteral("xabcx"));
    QCOMPARE(storage.snapshot().toString(), QStringLiteral("another"));
}

void TextStorageTest::coloursAreToldOnceAndMovedByEdits()
{
    TextStorage storage;
    storage.setText(QStringLiteral("abcdef"));
    QSignalSpy changed(&storage, &TextStorage::attributesChanged);
    {
        const EditingBracket bracket(storage);
        storage.setForeground({0, 1}, 0xff112233);
        storage.setBackground({2, 2}, 0xff445566);
        storage.replace({0, 0}, u"##");
    }
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().value<TextRange>(), (TextRange{2, 4}));
    QCOMPARE(storage.foreground().colorAt(2), ColorRuns::Color(0xff112233));
    QCOMPARE(storage.background().colorAt(4), ColorRuns::Color(0xff445566));
    storage.assignForeground(storage.foreground().runsIn({0, storage.length()}));
    QCOMPARE(changed.size(), 1);
}

void TextStorageTest::anotherTextHasNoColours()
{
    TextStorage storage;
    storage.setText(QStringLiteral("old"));
    storage.setForeground({0, 3}, 0xff000000);
    storage.setText(QStringLiteral("another\ntext"));
    QCOMPARE(storage.lines().lineCount(), 2);
    QVERIFY(storage.foreground().runsIn({0, 100}).empty());
}

void TextStorageTest::randomBracketsAgreeWithAPlainString()
{
    test::RandomText random;
    TextStorage storage;
    QString model;
    // Carried over each signal, as a cache would be: the text rebuilt from what the signals say.
    QString followed;
    QStringList lines{QString()};
    connect(&storage, &TextStorage::edited, this, [&](const TextEdit& edit) {
        followed.replace(edit.range.location, edit.range.length,
                         storage.text().mid(edit.range.location, edit.newLength));
        lines.remove(edit.firstLine, edit.linesRemoved);
        for (qsizetype line = edit.firstLine; line < edit.firstLine + edit.linesAdded; ++line) {
            const qsizetype start = storage.lines().start(line);
            lines.insert(line, storage.text().mid(start, storage.lines().end(line) - start));
        }
    });
    for (int round = 0; round < 3000; ++round) {
        const EditingBracket bracket(storage);
        for (qsizetype edits = 1 + random.below(3); edits > 0; --edits) {
            const TextRange range = random.range(model.size());
            const QString replacement = random.text(model.size() > 200 ? 2 : 6);
            storage.replace(range, replacement);
            model.replace(range.location, range.length, replacement);
        }
        if (random.below(500) == 0) {
            model = random.text(30);
            storage.setText(model);
        }
    }
    QCOMPARE(storage.text(), model);
    QCOMPARE(followed, model);
    QCOMPARE(lines.join(QString()), model);
    QCOMPARE(lines.size(), storage.lines().lineCount());
}

const kelm::test::Registered<TextStorageTest> registered;

} // namespace text_storage_test

#include "text_storage_test.moc"
