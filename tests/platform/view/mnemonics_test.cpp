#include "platform/view/mnemonics.h"
#include "platform/view/plain_button.h"
#include "support/test_program.h"

#include <QAccessible>
#include <QMenu>
#include <QPushButton>
#include <QtTest>

namespace mnemonics_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

/// Names with ampersands, as files, branches and themes have them.
class MnemonicsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesAreShownAsTheyAre_data();
    void namesAreShownAsTheyAre();
    void aButtonMakesNoKeyOfAName_data() { namesAreShownAsTheyAre_data(); }
    void aButtonMakesNoKeyOfAName();
    void aMenuMakesNoKeyOfAName_data() { namesAreShownAsTheyAre_data(); }
    void aMenuMakesNoKeyOfAName();
    void marksAreTakenOut();
};

void MnemonicsTest::namesAreShownAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name :
         {u"plain"_s, u"a & b"_s, u"R&D.txt"_s, u"&first"_s, u"last&"_s, u"&&"_s, u"a&&b&c"_s, u""_s}) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void MnemonicsTest::namesAreShownAsTheyAre()
{
    QFETCH(QString, name);
    const QString label = withoutMnemonic(name);
    QVERIFY(QKeySequence::mnemonic(label).isEmpty());
    QCOMPARE(withoutMnemonicMarks(label), name);
}

void MnemonicsTest::aButtonMakesNoKeyOfAName()
{
    QFETCH(QString, name);
    PlainButton button(ButtonLook{});
    button.setText(name);
    QCOMPARE(button.text(), name);
    QVERIFY(button.shortcut().isEmpty());
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&button);
    QCOMPARE(told->text(QAccessible::Name), name);
    QVERIFY(told->text(QAccessible::Accelerator).isEmpty());
}

void MnemonicsTest::aMenuMakesNoKeyOfAName()
{
    QFETCH(QString, name);
    QMenu menu;
    menu.addAction(withoutMnemonic(name));
    menu.popup(QPoint());
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&menu)->child(0);
    QCOMPARE(told->text(QAccessible::Name), name);
}

void MnemonicsTest::marksAreTakenOut()
{
    QCOMPARE(withoutMnemonicMarks(u"F&ind"), u"Find"_s);
    QCOMPARE(withoutMnemonicMarks(u"&File"), u"File"_s);
    QCOMPARE(withoutMnemonicMarks(u"R&&D"), u"R&D"_s);
    QCOMPARE(withoutMnemonicMarks(u"end&"), u"end&"_s);
}

const kelm::test::Registered<MnemonicsTest> registered(kelm::test::Toolkit::widgets);

} // namespace mnemonics_test

#include "mnemonics_test.moc"
