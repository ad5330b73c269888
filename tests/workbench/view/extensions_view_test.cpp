#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/view/extensions_view.h"

#include <QAbstractButton>
#include <QtTest>

namespace extensions_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class ExtensionsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itSaysThatExtensionsAreYetToCome_data();
    void itSaysThatExtensionsAreYetToCome();
    void itHasNoFunction();
};

void ExtensionsViewTest::itSaysThatExtensionsAreYetToCome_data()
{
    QTest::addColumn<Appearance>("appearance");
    QTest::newRow("dark") << Appearance::dark;
    QTest::newRow("light") << Appearance::light;
}

void ExtensionsViewTest::itSaysThatExtensionsAreYetToCome()
{
    QFETCH(Appearance, appearance);
    ExtensionsView view;
    view.setPalette(style::palette(appearance));
    view.resize(260, 500);
    view.show();
    auto& symbol = *view.findChild<SymbolLabel*>();
    const QList<TextLabel*> texts = view.findChildren<TextLabel*>();
    QCOMPARE(texts.size(), 2);
    SymbolLabel piece(u"puzzlepiece.extension"_s, 40, Tint::secondary());
    TextLabel headline(u"Extensions"_s, style::headlineFont(), Tint::primary());
    TextLabel words(u"Coming soon..."_s, style::interfaceFont(style::typeSize::body), Tint::secondary());
    QVERIFY(icons::has(u"puzzlepiece.extension"_s));
    for (QWidget* expected : std::initializer_list<QWidget*>{&piece, &headline, &words}) {
        expected->setPalette(style::palette(appearance));
    }
    QCOMPARE(symbol.size(), QSize(40, 40));
    QVERIFY(looksLike(symbol, piece));
    QCOMPARE(texts[0]->text(), headline.text());
    QVERIFY(looksLike(*texts[0], headline));
    QCOMPARE(texts[1]->text(), words.text());
    QVERIFY(looksLike(*texts[1], words));
    // One below the other, in the middle.
    QVERIFY(symbol.geometry().bottom() < texts[0]->y());
    QVERIFY(texts[0]->geometry().bottom() < texts[1]->y());
    for (const QWidget* part : std::initializer_list<const QWidget*>{&symbol, texts[0], texts[1]}) {
        QVERIFY(std::abs(part->geometry().center().x() - view.rect().center().x()) <= 1);
    }
    const int middle = (symbol.y() + texts[1]->geometry().bottom()) / 2;
    QVERIFY(std::abs(middle - view.rect().center().y()) <= 1);
}

void ExtensionsViewTest::itHasNoFunction()
{
    ExtensionsView view;
    QVERIFY(view.findChildren<QAbstractButton*>().isEmpty());
    for (const QWidget* part : view.findChildren<QWidget*>()) {
        QCOMPARE(part->focusPolicy(), Qt::NoFocus);
        QVERIFY(part->actions().isEmpty());
    }
}

const kelm::test::Registered<ExtensionsViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace extensions_view_test

#include "extensions_view_test.moc"
