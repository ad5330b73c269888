#include "app/state/dropped_data.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QMimeData>
#include <QtTest>

namespace dropped_data_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class DroppedDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesFoldersAndLinksAreOpened();
    void aListOfOthersIsReadAsItIsWritten();
    void aTextHasATabOfItsOwn();
    void whatIsNeitherIsNotTaken();
};

void DroppedDataTest::filesFoldersAndLinksAreOpened()
{
    AppStateFixture fixture;
    QVERIFY(QDir(fixture.folder.path()).mkdir(u"project"_s));
    QMimeData data;
    data.setUrls({fixture.write(u"b.txt"_s, "b"), fixture.url(u"project"_s), fixture.write(u"a.txt"_s, "a")});
    data.setText(u"not this"_s);
    QVERIFY(canOpenDropped(data));
    openDropped(data, fixture.state, {});
    QCOMPARE(fixture.openTexts(), (QStringList{u"b"_s, u"a"_s}));
    QVERIFY(fixture.state.currentProject() == fixture.url(u"project"_s));
}

void DroppedDataTest::aListOfOthersIsReadAsItIsWritten()
{
    AppStateFixture fixture;
    const QUrl raw(u"file://"_s + fixture.folder.path() + u"/%FF.txt"_s);
    const QByteArray path = fixture.folder.path().toUtf8() + "/\xff.txt";
    FILE* const made = std::fopen(path.constData(), "w");
    QVERIFY(made != nullptr && std::fputs("raw", made) >= 0 && std::fclose(made) == 0);
    QMimeData data;
    data.setData(u"text/uri-list"_s, "# a comment\r\n" + raw.toEncoded() + "\r\nkelmpane://open?code=YQ\r\n");
    QStringList links;
    openDropped(data, fixture.state, [&links](const QString& text) { links << text; });
    QCOMPARE(fixture.openTexts(), QStringList{u"raw"_s});
    QCOMPARE(links, QStringList{u"kelmpane://open?code=YQ"_s});
}

void DroppedDataTest::aTextHasATabOfItsOwn()
{
    AppStateFixture fixture;
    QMimeData data;
    data.setText(u"dropped\r\ntext"_s);
    QVERIFY(canOpenDropped(data));
    openDropped(data, fixture.state, {});
    QCOMPARE(fixture.openTexts(), QStringList{u"dropped\r\ntext"_s});
    QVERIFY(fixture.state.currentDocument()->isModified());
    QVERIFY(!fixture.state.currentDocument()->fileURL());
}

void DroppedDataTest::whatIsNeitherIsNotTaken()
{
    AppStateFixture fixture;
    QMimeData image;
    image.setData(u"image/png"_s, "x");
    QVERIFY(!canOpenDropped(image));
    QMimeData empty;
    empty.setText({});
    openDropped(empty, fixture.state, {});
    QVERIFY(fixture.state.documents().isEmpty());
}

const kelm::test::Registered<DroppedDataTest> registered;

} // namespace dropped_data_test

#include "dropped_data_test.moc"
