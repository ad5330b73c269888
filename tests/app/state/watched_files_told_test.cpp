#include "support/test_program.h"
#include "support/watched_file_fixture.h"

#include <QSignalSpy>
#include <QtTest>

namespace watched_files_told_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

/// What a person was told of a file, what becomes of that, and when it is told again.
class WatchedFilesToldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnreadableFileThatVanishesIsToldOf();
    void theNoticesOfOthersStay();
    void whatWasToldIsForgottenBySaving();
    void whatWasToldIsForgottenByReloading();
    void whatWasToldIsToldAgainOnceItWasAway();
    void whatWasToldIsToldAgainOnceItWasUndone();
    void whatIsAsItWasIsReloadedToo();
    void whatHasGoneIsNotReloadedLater();
};

void WatchedFilesToldTest::anUnreadableFileThatVanishesIsToldOf()
{
    WatchedFileFixture fixture;
    fixture.open("text");
    fixture.remove();
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.gone);
    fixture.change("caf\xe9");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), u"a.txt has changed on disk and could not be read: it is no text in UTF-8."_s);
    // Once, and each change of it anew.
    fixture.state.notices().putAway();
    fixture.settle();
    QCOMPARE(fixture.noticeText(), QString());
    fixture.change("caf\xe9, and more");
    fixture.settle();
    QVERIFY(!fixture.noticeText().isEmpty());
    fixture.remove();
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.gone);
    // What can be read at last is taken, and there is nothing more to tell.
    fixture.change("text again");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), QString());
    QCOMPARE(fixture.document().content(), u"text again"_s);
}

void WatchedFilesToldTest::theNoticesOfOthersStay()
{
    WatchedFileFixture fixture;
    const auto report = [&fixture](const QString& text) { fixture.state.notices().report(text, {{u"Look"_s, [] {}}}); };
    report(u"the first of all"_s);
    fixture.open("old");
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"another program's"_s);
    for (const qsizetype offer : {0, 1}) {
        fixture.document().setContent(u"mine"_s);
        fixture.change("another program's" + QByteArray(offer + 1, '!'));
        fixture.settle();
        QCOMPARE(fixture.noticeText(), fixture.changed);
        fixture.state.notices().accept(offer);
        fixture.settle();
        QCOMPARE(fixture.noticeText(), u"the first of all"_s);
    }
    QCOMPARE(fixture.document().content(), u"mine"_s);
    fixture.state.saveCurrentDocument();
    QCOMPARE(fixture.noticeText(), u"the first of all"_s);
}

void WatchedFilesToldTest::whatWasToldIsForgottenBySaving()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    fixture.rename(u"a.txt"_s, u"kept"_s);
    fixture.state.saveCurrentDocument();
    fixture.state.notices().putAway();
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"mine"_s);
    // The other program insists: the very file that was told of is back.
    fixture.rename(u"kept"_s, u"a.txt"_s);
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"another program's"_s);
}

void WatchedFilesToldTest::whatWasToldIsForgottenByReloading()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    fixture.state.notices().accept(0);
    fixture.settle();
    fixture.rename(u"a.txt"_s, u"kept"_s);
    fixture.change("a later text");
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"a later text"_s);
    fixture.rename(u"kept"_s, u"a.txt"_s);
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"another program's"_s);
}

void WatchedFilesToldTest::whatWasToldIsToldAgainOnceItWasAway()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    // The one notice takes the place of the other, and that its again.
    fixture.rename(u"a.txt"_s, u"away"_s);
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.gone);
    fixture.rename(u"away"_s, u"a.txt"_s);
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    QCOMPARE(fixture.document().content(), u"mine"_s);
}

void WatchedFilesToldTest::whatWasToldIsToldAgainOnceItWasUndone()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    fixture.rename(u"a.txt"_s, u"theirs"_s);
    fixture.change("old");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), QString());
    fixture.rename(u"theirs"_s, u"a.txt"_s);
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    QCOMPARE(fixture.document().content(), u"mine"_s);
}

void WatchedFilesToldTest::whatIsAsItWasIsReloadedToo()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    // Nobody has looked again by the time that the person asks for what is there.
    fixture.change("old");
    QSignalSpy taken(&fixture.document(), &Document::contentChanged);
    fixture.state.notices().accept(0);
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"old"_s);
    QVERIFY(!fixture.document().isModified());
    QCOMPARE(taken.count(), 1);
    // And nobody asks for the next one.
    fixture.document().setContent(u"mine again"_s);
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"mine again"_s);
    QCOMPARE(fixture.noticeText(), fixture.changed);
}

void WatchedFilesToldTest::whatHasGoneIsNotReloadedLater()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    fixture.remove();
    fixture.state.notices().accept(0);
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.gone);
    // Told once, and done with: what comes there later is another question.
    fixture.state.notices().putAway();
    fixture.settle();
    QCOMPARE(fixture.noticeText(), QString());
    fixture.document().setContent(u"mine, typed on"_s);
    fixture.change("a later text");
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"mine, typed on"_s);
    QCOMPARE(fixture.noticeText(), fixture.changed);
}

const kelm::test::Registered<WatchedFilesToldTest> registered;

} // namespace watched_files_told_test

#include "watched_files_told_test.moc"
