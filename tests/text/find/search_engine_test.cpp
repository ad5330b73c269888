#include "support/test_program.h"
#include "text/find/search_engine.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <QtTest>

namespace search_engine_test {

using namespace kelm;

class SearchEngineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void theFourPublishedFieldsTellOfTheirChangesOnce();
    void matchesAreEqualFieldByField();
    void eachMatchHasAnIdentityOfItsOwn();
};

void SearchEngineTest::startsEmpty()
{
    const SearchEngine engine;
    QVERIFY(engine.searchText().isEmpty());
    QVERIFY(engine.replaceText().isEmpty());
    QVERIFY(engine.results().isEmpty());
    QCOMPARE(engine.currentMatchIndex(), 0);
    QVERIFY(!engine.useRegex());
    QVERIFY(!engine.caseSensitive());
    QVERIFY(!engine.wholeWord());
}

void SearchEngineTest::theFourPublishedFieldsTellOfTheirChangesOnce()
{
    SearchEngine engine;
    const QMetaObject* meta = engine.metaObject();
    QStringList published;
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        published += QString::fromLatin1(meta->property(i).name());
        QVERIFY(meta->property(i).hasNotifySignal());
    }
    QCOMPARE(published, (QStringList{QStringLiteral("searchText"), QStringLiteral("replaceText"),
                                     QStringLiteral("results"), QStringLiteral("currentMatchIndex")}));

    QSignalSpy texts(&engine, &SearchEngine::searchTextChanged);
    QSignalSpy replacements(&engine, &SearchEngine::replaceTextChanged);
    QSignalSpy results(&engine, &SearchEngine::resultsChanged);
    QSignalSpy indexes(&engine, &SearchEngine::currentMatchIndexChanged);
    const QList<SearchMatch> matches{SearchMatch()};
    for (int i = 0; i < 2; ++i) {
        engine.setSearchText(QStringLiteral("a"));
        engine.setReplaceText(QStringLiteral("b"));
        engine.setResults(matches);
        engine.setCurrentMatchIndex(3);
        engine.setUseRegex(true);
        engine.setCaseSensitive(true);
        engine.setWholeWord(true);
    }
    QCOMPARE(texts.size(), 1);
    QCOMPARE(replacements.size(), 1);
    QCOMPARE(results.size(), 1);
    QCOMPARE(indexes.size(), 1);
    QCOMPARE(engine.searchText(), QStringLiteral("a"));
    QCOMPARE(engine.replaceText(), QStringLiteral("b"));
    QCOMPARE(engine.results(), matches);
    // The index is what it was set to, whatever there is to point at.
    QCOMPARE(engine.currentMatchIndex(), 3);
    QVERIFY(engine.useRegex() && engine.caseSensitive() && engine.wholeWord());
}

void SearchEngineTest::matchesAreEqualFieldByField()
{
    const SearchMatch match{QUuid::createUuid(), {3, 2}, 1, 4, QStringLiteral("one two"), QStringLiteral(" t")};
    QCOMPARE(match, SearchMatch(match));
    for (int field = 0; field < 6; ++field) {
        SearchMatch other = match;
        switch (field) {
        case 0:
            other.id = QUuid::createUuid();
            break;
        case 1:
            other.range.length = 1;
            break;
        case 2:
            other.line = 2;
            break;
        case 3:
            other.column = 5;
            break;
        case 4:
            other.lineText += u'x';
            break;
        default:
            other.matchText += u'x';
        }
        QVERIFY(!(match == other));
    }
}

void SearchEngineTest::eachMatchHasAnIdentityOfItsOwn()
{
    QVERIFY(!SearchMatch().id.isNull());
    QVERIFY(SearchMatch().id != SearchMatch().id);
}

const kelm::test::Registered<SearchEngineTest> registered;

} // namespace search_engine_test

#include "search_engine_test.moc"
