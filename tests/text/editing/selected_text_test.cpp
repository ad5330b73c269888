#include "support/test_program.h"
#include "text/editing/selected_text.h"

#include <QtTest>

namespace selected_text_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class SelectedTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itHoldsWhatWasSelected();
    void theRestCanBeLetGo();
};

void SelectedTextTest::itHoldsWhatWasSelected()
{
    TextTree text(u"one\r\ntwo\r\nthree"_s);
    const SelectedText selected(text, {{0, 3}, {4, 6}, {10, 5}});
    text.replace({0, text.length()}, u"others");
    QVERIFY(!selected.isEmpty());
    QCOMPARE(selected.texts(), (QStringList{u"one"_s, u"\ntwo\r\n"_s, u"three"_s}));
    QVERIFY(SelectedText().isEmpty());
    QCOMPARE(SelectedText().texts(), QStringList());
}

void SelectedTextTest::theRestCanBeLetGo()
{
    const QString text = u"0123456789"_s.repeated(2'000);
    SelectedText selected(TextTree(text), {{5, 10'000}, {15'003, 4}});
    const QStringList before = selected.texts();
    selected.letGoOfTheRest();
    QCOMPARE(selected.texts(), before);
    QCOMPARE(before, (QStringList{text.mid(5, 10'000), text.mid(15'003, 4)}));
}

const kelm::test::Registered<SelectedTextTest> registered;

} // namespace selected_text_test

#include "selected_text_test.moc"
