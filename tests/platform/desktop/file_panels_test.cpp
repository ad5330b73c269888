#include "platform/desktop/file_panels.h"
#include "support/fake_file_panels.h"
#include "support/test_program.h"

#include <QtTest>

namespace file_panels_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class FilePanelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutPanelsNothingIsChosen();
    void installedPanelsAnswer();
};

void FilePanelsTest::withoutPanelsNothingIsChosen()
{
    QVERIFY(FilePanels::shared().showOpenPanel({}).isEmpty());
    QVERIFY(!FilePanels::shared().showSavePanel({.allowedTypes = {ContentType::json}}));
}

void FilePanelsTest::installedPanelsAnswer()
{
    auto panels = std::make_unique<FakeFilePanels>();
    panels->openAnswer = {{QUrl(u"file:///a/"_s), true}, {QUrl(u"file:///a/b"_s), false}};
    panels->saveAnswer = QUrl(u"file:///a/c"_s);
    FilePanels::install(std::move(panels));
    QCOMPARE(FilePanels::shared().showOpenPanel({}).size(), 2);
    QVERIFY(FilePanels::shared().showSavePanel({}) == QUrl(u"file:///a/c"_s));
}

const kelm::test::Registered<FilePanelsTest> registered;

} // namespace file_panels_test

#include "file_panels_test.moc"
