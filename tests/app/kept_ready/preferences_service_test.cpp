#include "app/kept_ready/preferences_service.h"
#include "support/test_program.h"

#include <QtTest>

namespace preferences_service_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

/// What the fields of the record hold at first. That they tell of their changes is held beside the table of settings.
class PreferencesServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDefaultsAreThoseOfTheWindow();
    void whatHasNoControlHasADefaultToo();
};

void PreferencesServiceTest::theDefaultsAreThoseOfTheWindow()
{
    const PreferencesService service;
    QCOMPARE(service.fontSize.value(), 13.0);
    QCOMPARE(service.fontFamily.value(), u"SF Mono"_s);
    QCOMPARE(service.lineHeight.value(), 1.4);
    QCOMPARE(service.tabSize.value(), 4);
    QCOMPARE(service.autoSaveDelay.value(), 5);
    QVERIFY(service.insertSpaces);
    QVERIFY(!service.wordWrap);
    QVERIFY(service.showLineNumbers);
    QVERIFY(service.showMinimap);
    QVERIFY(service.highlightCurrentLine);
    QVERIFY(service.showIndentGuides);
    QVERIFY(service.autoSave);
    QVERIFY(service.matchBrackets);
    QVERIFY(service.autoCloseBrackets);
    QVERIFY(service.showWelcome);
    QVERIFY(service.reopenFiles);
    QVERIFY(service.confirmClose);
}

void PreferencesServiceTest::whatHasNoControlHasADefaultToo()
{
    const PreferencesService service;
    QVERIFY(!service.showWhitespace);
    QVERIFY(service.autoIndent);
    QCOMPARE(service.selectedTheme.value(), u"Monokai"_s);
    QCOMPARE(service.terminalShell.value(), u"/bin/zsh"_s);
    QCOMPARE(service.terminalFontSize.value(), 13.0);
}

const kelm::test::Registered<PreferencesServiceTest> registered(kelm::test::Toolkit::core);

} // namespace preferences_service_test

#include "preferences_service_test.moc"
