#include "git/service/remote_parser.h"
#include "support/test_program.h"

#include <QSet>
#include <QtTest>

namespace remote_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class RemoteParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstLineOfANameGivesItsURL_data();
    void firstLineOfANameGivesItsURL();
    void identitiesAreFreshInEachParse();
    void manyRemotesTakeLinearTime();
};

void RemoteParserTest::firstLineOfANameGivesItsURL_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("remotes");
    QTest::newRow("empty") << u""_s << QStringList();
    QTest::newRow("one") << u"origin\thttps://h/r.git (fetch)\norigin\thttps://h/r.git (push)\n"_s
                         << QStringList{u"origin=https://h/r.git"_s};
    QTest::newRow("partial clone") << u"o\thttps://h/r (fetch) [blob:none]\no\thttps://h/r (push)\n"_s
                                   << QStringList{u"o=https://h/r"_s};
    QTest::newRow("partial clone of another filter")
        << u"o\t/a (fetch) [combine:tree:1+blob:limit=1k]\np\t/b (push) [tree:0]\n"_s
        << QStringList{u"o=/a"_s, u"p=/b"_s};
    QTest::newRow("brackets of the path stay") << u"o\t/a [b] (fetch)\np\t/c [d]\nq\t/e [f] (fetch) [tree:0]\n"_s
                                               << QStringList{u"o=/a [b]"_s, u"p=/c [d]"_s, u"q=/e [f]"_s};
    QTest::newRow("different push URL") << u"o\tfetch-url (fetch)\no\tpush-url (push)\n"_s
                                        << QStringList{u"o=fetch-url"_s};
    QTest::newRow("order of first appearance")
        << u"z\t1 (fetch)\na\t2 (fetch)\nz\t3 (push)\n"_s << QStringList{u"z=1"_s, u"a=2"_s};
    QTest::newRow("every mark is removed") << u"o\t/a (push) b (fetch)/c (fetch)\n"_s << QStringList{u"o=/a b/c"_s};
    QTest::newRow("no tab") << u"origin\nb\tu (fetch)\n"_s << QStringList{u"b=u"_s};
    QTest::newRow("two tabs") << u"a\tb\tc (fetch)\n"_s << QStringList();
    QTest::newRow("empty pieces are kept") << u"a\t\n\tu\n"_s << QStringList{u"a="_s, u"=u"_s};
    QTest::newRow("blank in a path") << u"o\t/a folder/r (fetch)"_s << QStringList{u"o=/a folder/r"_s};
}

void RemoteParserTest::firstLineOfANameGivesItsURL()
{
    QFETCH(QString, output);
    QFETCH(QStringList, remotes);
    QStringList lines;
    for (const GitRemote& remote : parseRemotes(output)) {
        QVERIFY(!remote.id.isNull());
        lines.append(remote.name + u'=' + remote.url);
    }
    QCOMPARE(lines, remotes);
}

void RemoteParserTest::identitiesAreFreshInEachParse()
{
    const QString output = u"a\tu (fetch)\nb\tu (fetch)\n"_s;
    QSet<QUuid> ids;
    for (const auto& parse : {parseRemotes(output), parseRemotes(output)}) {
        for (const GitRemote& each : parse) {
            ids.insert(each.id);
        }
    }
    QCOMPARE(ids.size(), 4);
    QVERIFY(!ids.contains(QUuid()));
}

void RemoteParserTest::manyRemotesTakeLinearTime()
{
    QString output;
    for (int index = 0; index < 100000; ++index) {
        output += u"r%1\tu (fetch)\nr%1\tu (push)\n"_s.arg(index);
    }
    QCOMPARE(parseRemotes(output).size(), 100000);
}

const kelm::test::Registered<RemoteParserTest> registered;

} // namespace remote_parser_test

#include "remote_parser_test.moc"
