#include "platform/desktop/panel_places.h"
#include "platform/files/native_path.h"
#include "platform/files/user_defaults.h"
#include "support/test_program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace panel_places_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class PanelPlacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aPanelBeginsInTheFirstFolderThatIsThere_data();
    void aPanelBeginsInTheFirstFolderThatIsThere();
    void eachKindRemembersForItselfAcrossStarts();
    void whatIsRememberedAndGoneIsTheHome();
    void aFolderOfRawBytesIsTheNearestAroundIt();

private:
    QString path(const QString& name) const { return folder_->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder_;
};

void PanelPlacesTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(folder_->path()).mkpath(u"file"_s) && QDir(folder_->path()).mkpath(u"project/"_s));
    QVERIFY(QDir(folder_->path()).mkpath(u"last"_s));
}

void PanelPlacesTest::aPanelBeginsInTheFirstFolderThatIsThere_data()
{
    QTest::addColumn<QStringList>("wanted");
    QTest::addColumn<QString>("start");
    QTest::newRow("the file's") << QStringList{u"file"_s, u"project"_s} << u"file"_s;
    QTest::newRow("the file's, with a slash") << QStringList{u"file/"_s, u"project"_s} << u"file"_s;
    QTest::newRow("the project's") << QStringList{u"project/"_s} << u"project"_s;
    QTest::newRow("the first is gone") << QStringList{u"gone"_s, u"project"_s} << u"project"_s;
    QTest::newRow("none is there") << QStringList{u"gone"_s} << u"last"_s;
    QTest::newRow("none is wanted") << QStringList{} << u"last"_s;
}

void PanelPlacesTest::aPanelBeginsInTheFirstFolderThatIsThere()
{
    QFETCH(QStringList, wanted);
    QFETCH(QString, start);
    UserDefaults defaults(path(u"store.conf"_s));
    PanelPlaces places(defaults);
    places.noteEnd(PanelKind::open, path(u"last"_s));
    for (QString& each : wanted) {
        each = path(each);
    }
    QCOMPARE(places.start(PanelKind::open, wanted), path(start));
}

void PanelPlacesTest::eachKindRemembersForItselfAcrossStarts()
{
    {
        UserDefaults defaults(path(u"store.conf"_s));
        PanelPlaces places(defaults);
        places.noteEnd(PanelKind::save, path(u"last"_s));
        places.noteEnd(PanelKind::clone, path(u"project"_s));
    }
    UserDefaults defaults(path(u"store.conf"_s));
    const PanelPlaces places(defaults);
    QCOMPARE(places.start(PanelKind::save, {}), path(u"last"_s));
    QCOMPARE(places.start(PanelKind::clone, {}), path(u"project"_s));
    QCOMPARE(places.start(PanelKind::open, {}), QDir::homePath());
    QCOMPARE(places.start(PanelKind::project, {}), QDir::homePath());
}

void PanelPlacesTest::whatIsRememberedAndGoneIsTheHome()
{
    UserDefaults defaults(path(u"store.conf"_s));
    PanelPlaces places(defaults);
    places.noteEnd(PanelKind::save, path(u"gone"_s));
    QCOMPARE(places.start(PanelKind::save, {}), QDir::homePath());
    // Whoever writes there writes what he likes.
    defaults.setData(u"panelFolderSave"_s, "relative");
    QCOMPARE(places.start(PanelKind::save, {}), QDir::homePath());
}

void PanelPlacesTest::aFolderOfRawBytesIsTheNearestAroundIt()
{
    const QByteArray raw = path(u"project"_s).toUtf8() + "/b\xff" + "d";
    QVERIFY(::mkdir(raw.constData(), 0700) == 0 && ::mkdir((raw + "/in").constData(), 0700) == 0);
    UserDefaults defaults(path(u"store.conf"_s));
    const PanelPlaces places(defaults);
    QCOMPARE(places.start(PanelKind::open, {pathOfNative(raw + "/in/")}), path(u"project"_s));
}

const kelm::test::Registered<PanelPlacesTest> registered;

} // namespace panel_places_test

#include "panel_places_test.moc"
