#include "editor/folding/code_folding_manager.h"
#include "support/test_program.h"

#include <QtTest>

namespace code_folding_manager_worker_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Longer than what is read on the main thread in one go.
QString longText()
{
    return u"{\n x\n}\n"_s.repeated(200'000);
}

std::vector<FoldableRegion> regionsOf(const QString& text)
{
    FoldableRegions regions(CodeFolding::braces);
    regions.reset(text.size());
    regions.settle(TextTree(text));
    return regions.all();
}

struct Fixture
{
    explicit Fixture(const QString& content)
    {
        storage.setText(content);
        manager.setStorage(&storage);
        manager.onRegionsFound = [this] { ++found; };
        detect();
    }
    void detect() { manager.detectFoldableRegions(Language::cpp); }

    NotificationCenter center;
    TextStorage storage;
    CodeFoldingManager manager{center};
    int found = 0;
};

} // namespace

class CodeFoldingManagerWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aShortTextIsReadAtOnce();
    void aLongTextIsReadByAWorker();
    void editsMeanwhileAreMadeGood();
    void anEditOfALongLineIsReadByAWorker();
    void aLongLineThatIsJoinedIsReadByAWorker_data();
    void aLongLineThatIsJoinedIsReadByAWorker();
    void aTextThatGoesIsNotReadOn();
};

void CodeFoldingManagerWorkerTest::aShortTextIsReadAtOnce()
{
    Fixture fixture(u"{\n x\n}\n"_s);
    QVERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.manager.foldableRegions(), (std::vector<FoldableRegion>{{0, 1, 3, FoldType::braces}}));
    fixture.storage.replace({0, 0}, u"{\n");
    fixture.detect();
    QVERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.manager.foldableRegions(), (std::vector<FoldableRegion>{{0, 2, 4, FoldType::braces}}));
    QCOMPARE(fixture.found, 0);
}

void CodeFoldingManagerWorkerTest::aLongTextIsReadByAWorker()
{
    Fixture fixture(longText());
    QVERIFY(!fixture.manager.isSettled());
    QVERIFY(fixture.manager.foldableRegions().empty());
    QTRY_VERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.found, 1);
    QVERIFY(fixture.manager.foldableRegions() == regionsOf(longText()));
    // What an edit changes of it is little.
    fixture.storage.replace({0, 0}, u"{\n");
    fixture.detect();
    QVERIFY(fixture.manager.isSettled());
    QVERIFY(fixture.manager.foldableRegions() == regionsOf(fixture.storage.text()));
    QCOMPARE(fixture.found, 1);
}

void CodeFoldingManagerWorkerTest::editsMeanwhileAreMadeGood()
{
    Fixture fixture(longText());
    QVERIFY(!fixture.manager.isSettled());
    fixture.storage.replace({700'000, 0}, u"{\n\n");
    fixture.storage.replace({0, 7}, u"}\n");
    fixture.storage.replace({fixture.storage.length(), 0}, u"}\n");
    fixture.detect();
    QTRY_VERIFY(fixture.manager.isSettled());
    QVERIFY(fixture.found > 0);
    QVERIFY(fixture.manager.foldableRegions() == regionsOf(fixture.storage.text()));
}

void CodeFoldingManagerWorkerTest::anEditOfALongLineIsReadByAWorker()
{
    Fixture fixture(QString(300'000, u'x') + u"\n{\n y\n}\n"_s);
    QVERIFY(!fixture.manager.isSettled());
    QTRY_VERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.found, 1);
    fixture.storage.replace({10, 0}, u"{\n\n");
    // An edit of a short line behind it does not make it forgotten.
    fixture.storage.replace({fixture.storage.length(), 0}, u"}");
    fixture.detect();
    QVERIFY(!fixture.manager.isSettled());
    QTRY_VERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.found, 2);
    QVERIFY(fixture.manager.foldableRegions() == regionsOf(fixture.storage.text()));
    fixture.storage.replace({fixture.storage.length(), 0}, u"\n");
    fixture.detect();
    QVERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.found, 2);
}

void CodeFoldingManagerWorkerTest::aLongLineThatIsJoinedIsReadByAWorker_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<TextRange>("range");
    QTest::addColumn<QString>("replacement");
    const QString line(300'000, u'x');
    QTest::newRow("with the line before") << u"{\n\n"_s + line + u"\n}\n"_s << TextRange{2, 1} << QString();
    QTest::newRow("by a paste") << u"{\n\n}\n"_s << TextRange{2, 0} << line;
}

void CodeFoldingManagerWorkerTest::aLongLineThatIsJoinedIsReadByAWorker()
{
    QFETCH(QString, content);
    QFETCH(TextRange, range);
    QFETCH(QString, replacement);
    Fixture fixture(content);
    QTRY_VERIFY(fixture.manager.isSettled());
    fixture.storage.replace(range, replacement);
    fixture.detect();
    QVERIFY(!fixture.manager.isSettled());
    QTRY_VERIFY(fixture.manager.isSettled());
    QVERIFY(fixture.manager.foldableRegions() == regionsOf(fixture.storage.text()));
}

void CodeFoldingManagerWorkerTest::aTextThatGoesIsNotReadOn()
{
    Fixture fixture(longText());
    QVERIFY(!fixture.manager.isSettled());
    fixture.manager.setStorage(nullptr);
    QVERIFY(fixture.manager.isSettled());
    TextStorage other;
    other.setText(longText().chopped(7));
    fixture.manager.setStorage(&other);
    fixture.detect();
    other.setText(u"{\n x\n}\n"_s);
    QVERIFY(fixture.manager.isSettled());
    fixture.detect();
    QVERIFY(fixture.manager.isSettled());
    QCOMPARE(fixture.manager.foldableRegions(), (std::vector<FoldableRegion>{{0, 1, 3, FoldType::braces}}));
    QCOMPARE(fixture.found, 0);
}

const kelm::test::Registered<CodeFoldingManagerWorkerTest> registered;

} // namespace code_folding_manager_worker_test

#include "code_folding_manager_worker_test.moc"
