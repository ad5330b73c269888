#include "app/state/panel_start.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QtTest>

namespace panel_start_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class PanelStartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDocumentHasItsName_data();
    void aDocumentHasItsName();
    void panelsBeginAtTheFileAndThenAtTheProject();
    void thePanelsAreGivenBoth();
};

void PanelStartTest::aDocumentHasItsName_data()
{
    using Chosen = std::optional<Language>;
    QTest::addColumn<QString>("path");
    QTest::addColumn<Chosen>("chosen");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* name, const QString& path, Chosen chosen, const QString& suggested) {
        QTest::newRow(name) << path << chosen << suggested;
    };
    row("untitled", {}, {}, u"Untitled.txt"_s);
    row("untitled plain text", {}, Language::plainText, u"Untitled.txt"_s);
    row("untitled Python", {}, Language::python, u"Untitled.py"_s);
    row("untitled YAML", {}, Language::yaml, u"Untitled.yml"_s);
    row("a named one", u"/a/main.py"_s, {}, u"main.py"_s);
    row("one whose extension is not its language's first", u"/a/page.htm"_s, {}, u"page.htm"_s);
    row("one in another language", u"/a/notes.txt"_s, Language::javascript, u"notes.txt"_s);
    row("no extension", u"/a/Makefile"_s, {}, u"Makefile"_s);
    row("no extension, plain text", u"/a/README"_s, Language::plainText, u"README"_s);
    row("no extension, a chosen language", u"/a/deploy"_s, Language::shell, u"deploy.sh"_s);
    row("hidden", u"/a/.bashrc"_s, Language::shell, u".bashrc"_s);
    row("blanks and Korean", u"/a/새 글.md"_s, {}, u"새 글.md"_s);
}

void PanelStartTest::aDocumentHasItsName()
{
    using Chosen = std::optional<Language>;
    QFETCH(QString, path);
    QFETCH(Chosen, chosen);
    const std::optional<QUrl> url = path.isEmpty() ? std::nullopt : std::optional(urlOfFile(path));
    Document document(u"text"_s, url, chosen, std::nullopt);
    QTEST(suggestedName(document), "name");
    // The sign of unsaved edits is no part of a name.
    document.setIsModified(true);
    QTEST(suggestedName(document), "name");
}

void PanelStartTest::panelsBeginAtTheFileAndThenAtTheProject()
{
    AppStateFixture fixture;
    QCOMPARE(panelStart(fixture.state), QStringList());
    fixture.state.setCurrentProject(QUrl(u"file:///project/"_s));
    QCOMPARE(panelStart(fixture.state), QStringList{u"/project/"_s});
    fixture.state.openFile(fixture.write(u"a.txt"_s, "a"));
    QCOMPARE(panelStart(fixture.state), (QStringList{fixture.folder.path() + u'/', u"/project/"_s}));
    fixture.state.createNewTab();
    QCOMPARE(panelStart(fixture.state), QStringList{u"/project/"_s});
}

void PanelStartTest::thePanelsAreGivenBoth()
{
    AppStateFixture fixture;
    fixture.state.setCurrentProject(QUrl(u"file:///project/"_s));
    fixture.state.openSnippet(u"print()"_s, Language::python, std::nullopt);
    fixture.state.saveCurrentDocument();
    QCOMPARE(fixture.filePanels.savePanelOptions.suggestedName, u"Untitled.py"_s);
    QCOMPARE(fixture.filePanels.savePanelOptions.startFolders, QStringList{u"/project/"_s});
    fixture.state.showOpenPanel();
    QCOMPARE(fixture.filePanels.openPanelOptions.startFolders, QStringList{u"/project/"_s});
    QCOMPARE(fixture.filePanels.openPanelOptions.kind, PanelKind::open);
}

const kelm::test::Registered<PanelStartTest> registered;

} // namespace panel_start_test

#include "panel_start_test.moc"
