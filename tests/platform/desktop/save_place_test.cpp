#include "platform/desktop/save_place.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace save_place_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

void makeFile(const QString& path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace

class SavePlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPlaceIsGoodOrHasItsReason_data();
    void aPlaceIsGoodOrHasItsReason();
};

void SavePlaceTest::aPlaceIsGoodOrHasItsReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("why");
    QTest::newRow("a new file") << u"new.txt"_s << QString();
    QTest::newRow("a file that is there") << u"file.txt"_s << QString();
    QTest::newRow("through a link") << u"link/new.txt"_s << QString();
    QTest::newRow("a folder that is gone") << u"gone/new.txt"_s << u"There is no folder “gone”."_s;
    QTest::newRow("a file for a folder") << u"file.txt/new.txt"_s << u"“file.txt” is not a folder."_s;
    QTest::newRow("a folder") << u"folder"_s << u"“folder” is a folder."_s;
    QTest::newRow("a locked folder") << u"locked/new.txt"_s << u"You may not save in “locked”."_s;
    QTest::newRow("a file in a locked folder") << u"locked/mine.txt"_s << QString();
    QTest::newRow("a locked file") << u"locked.txt"_s << u"You may not write “locked.txt”."_s;
}

void SavePlaceTest::aPlaceIsGoodOrHasItsReason()
{
    QFETCH(QString, name);
    QTemporaryDir home;
    const QDir folder(home.path());
    QVERIFY(folder.mkdir(u"folder"_s) && folder.mkdir(u"locked"_s));
    for (const QString& file : {u"file.txt"_s, u"locked.txt"_s, u"locked/mine.txt"_s}) {
        makeFile(home.filePath(file));
    }
    QVERIFY(QFile::link(home.filePath(u"folder"_s), home.filePath(u"link"_s)));
    const auto all = QFile::Permissions(0x7777);
    const auto notWritten = QFile::Permissions(0x5555);
    for (const QString& open : {u"."_s, u"folder"_s, u"file.txt"_s, u"locked/mine.txt"_s}) {
        QVERIFY(QFile::setPermissions(home.filePath(open), all));
    }
    QVERIFY(QFile::setPermissions(home.filePath(u"locked.txt"_s), notWritten));
    QVERIFY(QFile::setPermissions(home.filePath(u"locked"_s), notWritten));
    QString why;
    {
        const test::Unprivileged unprivileged;
        why = whyNotSaved(home.filePath(name));
    }
    QTEST(why, "why");
    QVERIFY(QFile::setPermissions(home.filePath(u"locked"_s), all));
}

const kelm::test::Registered<SavePlaceTest> registered;

} // namespace save_place_test

#include "save_place_test.moc"
