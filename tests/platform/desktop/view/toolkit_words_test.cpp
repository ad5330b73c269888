#include "platform/desktop/view/file_and_folder_dialog.h"
#include "platform/desktop/view/toolkit_words.h"
#include "support/test_program.h"

#include <QGuiApplication>
#include <QKeySequence>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <QtTest>

namespace toolkit_words_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

Qt::LayoutDirection directionOfTheDialog()
{
    OpenPanelOptions options;
    options.canChooseFiles = true;
    options.canChooseDirectories = true;
    FileAndFolderDialog dialog(nullptr, options);
    dialog.show();
    return dialog.layoutDirection();
}

} // namespace

/// The words stay once they are installed, so the languages come in an order.
class ToolkitWordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void withoutWordsAllIsEnglish();
    void theFileDialogSpeaksTheLocalesLanguage();
    void nothingElseOfTheToolkitDoes();
    void onlyTheFileDialogIsReadFromRightToLeft();
};

void ToolkitWordsTest::initTestCase()
{
    if (!ToolkitWords().load(QLocale(QLocale::Korean), u"qtbase"_s, u"_"_s,
                             QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QSKIP("the toolkit's translations are not installed");
    }
}

void ToolkitWordsTest::cleanup()
{
    qDeleteAll(qApp->findChildren<ToolkitWords*>());
}

void ToolkitWordsTest::withoutWordsAllIsEnglish()
{
    QVERIFY(!installToolkitWords(*qApp, QLocale(u"tlh"_s)));
    QVERIFY(qApp->findChildren<ToolkitWords*>().isEmpty());
    QCOMPARE(directionOfToolkitWords(), Qt::LeftToRight);
}

void ToolkitWordsTest::theFileDialogSpeaksTheLocalesLanguage()
{
    QVERIFY(installToolkitWords(*qApp, QLocale(QLocale::Korean, QLocale::SouthKorea)));
    QCOMPARE(QFileDialog::tr("Look in:"), u"다음에서 찾기:"_s);
    QVERIFY(QCoreApplication::translate("QPlatformTheme", "Cancel") != u"Cancel");
    QCOMPARE(directionOfTheDialog(), Qt::LeftToRight);
}

void ToolkitWordsTest::nothingElseOfTheToolkitDoes()
{
    QVERIFY(installToolkitWords(*qApp, QLocale(QLocale::Korean, QLocale::SouthKorea)));
    QCOMPARE(QCoreApplication::translate("QLineEdit", "&Undo"), u"&Undo"_s);
    QCOMPARE(QCoreApplication::translate("QShortcut", "Ctrl"), u"Ctrl"_s);
    QCOMPARE(QKeySequence(Qt::CTRL | Qt::Key_P).toString(QKeySequence::NativeText), u"Ctrl+P"_s);
}

void ToolkitWordsTest::onlyTheFileDialogIsReadFromRightToLeft()
{
    QVERIFY(installToolkitWords(*qApp, QLocale(QLocale::Arabic)));
    QCOMPARE(QGuiApplication::layoutDirection(), Qt::LeftToRight);
    QCOMPARE(directionOfTheDialog(), Qt::RightToLeft);
    QWidget window;
    QCOMPARE(window.layoutDirection(), Qt::LeftToRight);
}

const kelm::test::Registered<ToolkitWordsTest> registered(kelm::test::Toolkit::widgets);

} // namespace toolkit_words_test

#include "toolkit_words_test.moc"
