#include "support/test_program.h"
#include "workbench/view/field_keys.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QtTest>

namespace field_keys_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A field that loses all its text by any key with Control, as some platforms' do by some.
template <typename Base>
struct Field : Base
{
    bool isEmptied = false;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        isEmptied = isEmptied || (event->modifiers() == Qt::ControlModifier && event->key() != Qt::Key_Control);
        Base::keyPressEvent(event);
    }
};

template <typename Base>
bool isEmptiedBy(Qt::Key key)
{
    Field<Base> field;
    field.show();
    QTest::keyClick(&field, key, Qt::ControlModifier);
    return field.isEmptied;
}

} // namespace

class FieldKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noFieldHearsWhatErasesUnnamed_data();
    void noFieldHearsWhatErasesUnnamed();
};

void FieldKeysTest::noFieldHearsWhatErasesUnnamed_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("hears");
    QTest::newRow("Ctrl+D") << Qt::Key_D << false;
    QTest::newRow("Ctrl+K") << Qt::Key_K << false;
    QTest::newRow("Ctrl+U") << Qt::Key_U << false;
    QTest::newRow("Ctrl+Backspace") << Qt::Key_Backspace << true;
    QTest::newRow("Ctrl+Delete") << Qt::Key_Delete << true;
    QTest::newRow("Ctrl+V") << Qt::Key_V << true;
    QTest::newRow("Ctrl+Home") << Qt::Key_Home << true;
}

void FieldKeysTest::noFieldHearsWhatErasesUnnamed()
{
    QFETCH(Qt::Key, key);
    QFETCH(bool, hears);
    const FieldKeys keys(nullptr);
    QCOMPARE(isEmptiedBy<QLineEdit>(key), hears);
    QCOMPARE(isEmptiedBy<QTextEdit>(key), hears);
    QCOMPARE(isEmptiedBy<QPlainTextEdit>(key), hears);
    // Other widgets hear all.
    QVERIFY(isEmptiedBy<QWidget>(key));
}

const kelm::test::Registered<FieldKeysTest> registered(kelm::test::Toolkit::widgets);

} // namespace field_keys_test

#include "field_keys_test.moc"
