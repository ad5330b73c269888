#include "learning/view/diagnosis_section.h"
#include "learning/view/side_panel_fixture.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QtTest>

#include <algorithm>

namespace learning_mode_side_panel_look_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : SidePanelFixture
{
    explicit Fixture(Appearance appearance = Appearance::dark)
    {
        QApplication::setPalette(style::palette(appearance));
        show({.slug = u"intro"_s, .requires_ = {u"KELM_TEST_ABSENT"_s}}, 900);
    }
    ~Fixture() { QApplication::setPalette(style::palette(Appearance::dark)); }

    /// Runs a program that lacks a module.
    void fail()
    {
        run(u"echo \"No module named 'foo'\" >&2"_s);
        QTRY_VERIFY(panel->diagnosis().has_value());
        QCoreApplication::processEvents();
    }
    /// What is seen of a kind, from top to bottom.
    template <typename Part>
    QList<Part*> seen() const
    {
        QList<Part*> parts;
        for (auto* part : panel->findChildren<Part*>()) {
            if (part->isVisible()) {
                parts.append(part);
            }
        }
        std::stable_sort(parts.begin(), parts.end(), [this](const Part* a, const Part* b) { return y(*a) < y(*b); });
        return parts;
    }
    template <typename Label>
    Label& label(const QString& text) const
    {
        for (Label* label : seen<Label>()) {
            if (label->text() == text) {
                return *label;
            }
        }
        qFatal("no label '%s'", qPrintable(text));
    }
    PlainButton& button(const QString& name) const
    {
        PlainButton* const found = SidePanelFixture::button(name);
        if (found == nullptr) {
            qFatal("no button '%s'", qPrintable(name));
        }
        return *found;
    }
};

bool isSymbol(SymbolLabel& label, const QString& name, int size, const Tint& tint)
{
    SymbolLabel expected(name, size, tint);
    return icons::has(name) && label.size() == QSize(size, size) && looksLike(label, expected);
}

bool isText(TextLabel& label, const QFont& font, const Tint& tint)
{
    TextLabel expected(label.text(), font, tint);
    return looksLike(label, expected);
}

bool isWrapped(WrappedLabel& label, const QFont& font, const Tint& tint)
{
    WrappedLabel expected(label.text(), font, tint);
    return looksLike(label, expected);
}

void addAppearances()
{
    QTest::addColumn<Appearance>("appearance");
    QTest::newRow("dark") << Appearance::dark;
    QTest::newRow("light") << Appearance::light;
}

} // namespace

class LearningModeSidePanelLookTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itsGroundIsFaint_data() { addAppearances(); }
    void itsGroundIsFaint();
    void theHeaderIsInTheAccentColour_data() { addAppearances(); }
    void theHeaderIsInTheAccentColour();
    void theDiagnosisIsOrange_data() { addAppearances(); }
    void theDiagnosisIsOrange();
    void theFixStandsOnABoxOfItsOwn_data() { addAppearances(); }
    void theFixStandsOnABoxOfItsOwn();
    void theRegionHasABook_data() { addAppearances(); }
    void theRegionHasABook();
    void theButtonsHaveTheirSymbols();
    void eachSectionButTheFirstHasADivider();
    void aLongMessageIsSeenWhole();
    void theSectionsEndBeforeASpace();
};

void LearningModeSidePanelLookTest::itsGroundIsFaint()
{
    QFETCH(Appearance, appearance);
    Fixture fixture(appearance);
    QCOMPARE(fixture.panel->width(), 280);
    QCOMPARE(fixture.panel->minimumWidth(), 280);
    QCOMPARE(fixture.panel->maximumWidth(), 280);
    const QColor behind = fixture.panel->palette().color(QPalette::Window);
    const QColor ground = over(behind, Tint::secondary().at(0.04).in(appearance));
    QVERIFY(distance(ground, behind) >= 2);
    const QImage image = fixture.panel->grab().toImage();
    for (const QPoint place : {QPoint(0, 0), QPoint(279, 0), QPoint(0, 899), QPoint(279, 899)}) {
        QVERIFY(distance(image.pixelColor(place), ground) <= 1);
    }
}

void LearningModeSidePanelLookTest::theHeaderIsInTheAccentColour()
{
    QFETCH(Appearance, appearance);
    Fixture fixture(appearance);
    const auto symbols = fixture.seen<SymbolLabel>();
    QVERIFY(isSymbol(*symbols.first(), u"graduationcap.fill"_s, 16, Tint::accent()));
    QVERIFY(isText(fixture.label<TextLabel>(u"Learning Mode"_s), style::interfaceFont(12, QFont::DemiBold),
                   Tint::accent()));
    QVERIFY(
        isWrapped(fixture.label<WrappedLabel>(u"intro"_s), style::interfaceFont(15, QFont::DemiBold), Tint::primary()));
}

void LearningModeSidePanelLookTest::theDiagnosisIsOrange()
{
    QFETCH(Appearance, appearance);
    Fixture fixture(appearance);
    fixture.fail();
    QVERIFY(isText(fixture.label<TextLabel>(u"DIAGNOSIS"_s), style::interfaceFont(10, QFont::DemiBold),
                   SystemColor::orange));
    auto* section = fixture.panel->findChild<DiagnosisSection*>();
    const auto symbols = section->findChildren<SymbolLabel*>();
    QCOMPARE(symbols.size(), 1);
    TextLabel& title = fixture.label<TextLabel>(u"Missing module"_s);
    // It stands before the title, on one line.
    QVERIFY(symbols.first()->mapTo(section, QPoint()).x() < title.mapTo(section, QPoint()).x());
    QVERIFY(std::abs(symbols.first()->geometry().center().y() - title.geometry().center().y()) <= 2);
    QCOMPARE(symbols.first()->width(), 11);
    SymbolLabel triangle(u"exclamationmark.triangle.fill"_s, 11, SystemColor::orange);
    QVERIFY(icons::has(u"exclamationmark.triangle.fill"_s) && looksLike(*symbols.first(), triangle));
    QVERIFY(isText(title, style::interfaceFont(12, QFont::DemiBold), Tint::primary()));
    QVERIFY(isWrapped(fixture.label<WrappedLabel>(u"Module 'foo' is not installed."_s), style::interfaceFont(11),
                      Tint::secondary()));
    // The other headings are not.
    QVERIFY(isText(fixture.label<TextLabel>(u"TIPS"_s), style::interfaceFont(10, QFont::DemiBold), Tint::secondary()));
}

void LearningModeSidePanelLookTest::theFixStandsOnABoxOfItsOwn()
{
    QFETCH(Appearance, appearance);
    Fixture fixture(appearance);
    fixture.fail();
    WrappedLabel& fix = fixture.label<WrappedLabel>(u"pip install foo"_s);
    QVERIFY(isWrapped(fix, style::monospaced(11), Tint::primary()));
    const QWidget& box = *fix.parentWidget();
    const QImage image = fixture.panel->grab().toImage();
    const QColor behind = fixture.panel->palette().color(QPalette::Window);
    const QColor ground = over(behind, Tint::secondary().at(0.04).in(appearance));
    const QColor boxed = over(ground, Tint::secondary().at(0.15).in(appearance));
    const auto at = [&](QPoint place) { return image.pixelColor(box.mapTo(fixture.panel.get(), place)); };
    QVERIFY(distance(at({1, box.height() / 2}), boxed) <= 2);
    QVERIFY(distance(at({box.width() / 2, 1}), boxed) <= 2);
    // There is room around the words, and the corners are round.
    QVERIFY(fix.x() > 2 && fix.y() > 2);
    QVERIFY(distance(at({0, 0}), ground) < distance(at({0, 0}), boxed));
}

void LearningModeSidePanelLookTest::theRegionHasABook()
{
    QFETCH(Appearance, appearance);
    Fixture fixture(appearance);
    TextLabel& lines = fixture.label<TextLabel>(u"Lines 1–1"_s);
    SymbolLabel& book = *fixture.seen<SymbolLabel>().last();
    QVERIFY(isSymbol(book, u"book"_s, book.width(), Tint::accent()));
    QVERIFY(std::abs(fixture.y(book) + book.height() / 2 - fixture.y(lines) - lines.height() / 2) <= 2);
    QVERIFY(fixture.y(book) > fixture.y(fixture.label<TextLabel>(u"FROM TEXTBOOK"_s)));
}

void LearningModeSidePanelLookTest::theButtonsHaveTheirSymbols()
{
    Fixture fixture;
    fixture.fail();
    const std::pair<QString, QString> symbols[] = {{u"Open lesson"_s, u"arrow.up.right.square"_s},
                                                   {u"Recheck"_s, u"arrow.clockwise"_s},
                                                   {u"Copy"_s, u"doc.on.doc"_s}};
    for (const auto& [name, symbol] : symbols) {
        QCOMPARE(fixture.button(name).look().symbol, symbol);
        QCOMPARE(fixture.button(name).look().ground, Tint::clear());
        QVERIFY(icons::has(symbol));
    }
    QCOMPARE(fixture.button(u"Copy"_s).look().tint, Tint::accent());
    const ButtonLook& copyExport = fixture.button(u"Copy export"_s).look();
    QCOMPARE(copyExport.symbol, QString());
    QCOMPARE(copyExport.textSize, 10);
    QCOMPARE(copyExport.tint, Tint::accent());
}

void LearningModeSidePanelLookTest::eachSectionButTheFirstHasADivider()
{
    Fixture fixture;
    QCOMPARE(fixture.seen<Divider>().size(), 3);
    fixture.fail();
    const auto dividers = fixture.seen<Divider>();
    QCOMPARE(dividers.size(), 4);
    QStringList headings{u"API KEYS NEEDED"_s, u"DIAGNOSIS"_s, u"FROM TEXTBOOK"_s, u"TIPS"_s};
    for (qsizetype index = 0; index < dividers.size(); ++index) {
        QCOMPARE(dividers.at(index)->width(), 280);
        const int heading = fixture.y(fixture.label<TextLabel>(headings.at(index)));
        QVERIFY(fixture.y(*dividers.at(index)) < heading);
        QVERIFY(index == 0 ||
                fixture.y(*dividers.at(index)) > fixture.y(fixture.label<TextLabel>(headings.at(index - 1))));
    }
}

void LearningModeSidePanelLookTest::aLongMessageIsSeenWhole()
{
    Fixture fixture;
    fixture.runner.runCode(u"echo ' 429' >&2"_s, Language::shell);
    QTRY_VERIFY(fixture.panel->diagnosis().has_value());
    QCoreApplication::processEvents();
    const WrappedLabel& message = fixture.label<WrappedLabel>(fixture.panel->diagnosis()->message);
    // More than the panel is wide.
    QVERIFY(message.fontMetrics().horizontalAdvance(message.text()) > 280);
    QVERIFY(message.height() >= message.heightForWidth(message.width()));
    QVERIFY(message.height() > message.fontMetrics().height() * 3 / 2);
    QTRY_VERIFY(!fixture.runner.isRunning());
}

void LearningModeSidePanelLookTest::theSectionsEndBeforeASpace()
{
    Fixture fixture;
    const auto labels = fixture.seen<WrappedLabel>();
    QVERIFY(labels.last()->text().startsWith(u"• Replace"_s));
    // The panel is higher than what it says, and that stands at its top.
    QVERIFY(fixture.y(*fixture.seen<SymbolLabel>().first()) < 40);
    QVERIFY(fixture.y(*labels.last()) + labels.last()->height() < 800);
    for (const WrappedLabel* label : labels) {
        QVERIFY(label->height() <= label->heightForWidth(label->width()) + 1);
    }
}

const kelm::test::Registered<LearningModeSidePanelLookTest> registered(kelm::test::Toolkit::widgets);

} // namespace learning_mode_side_panel_look_test

#include "learning_mode_side_panel_look_test.moc"
