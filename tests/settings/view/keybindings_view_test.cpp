#include "platform/style/view/style.h"
#include "platform/text/platform_words.h"
#include "platform/view/labels.h"
#include "settings/view/keybindings_view.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

namespace keybindings_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    KeybindingsView view;

    Fixture()
    {
        view.resize(620, 900);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view)) {
            qFatal("no window");
        }
    }

    QPoint placeOf(const QWidget& part) const { return part.mapTo(&view, QPoint()); }
    /// What is read, line by line from top to bottom, and from left to right on a line.
    QList<TextLabel*> labels() const
    {
        QList<TextLabel*> labels = view.findChildren<TextLabel*>();
        std::stable_sort(labels.begin(), labels.end(), [this](const TextLabel* a, const TextLabel* b) {
            const int middleOfA = placeOf(*a).y() + a->height() / 2;
            const int middleOfB = placeOf(*b).y() + b->height() / 2;
            return std::abs(middleOfA - middleOfB) > 3 ? middleOfA < middleOfB : placeOf(*a).x() < placeOf(*b).x();
        });
        return labels;
    }
};

bool isText(TextLabel& label, const QFont& font, const Tint& tint)
{
    TextLabel expected(label.text(), font, tint);
    return looksLike(label, expected);
}

} // namespace

class KeybindingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itReadsSectionBySection();
    void shortcutsStandAtTheRightInAMonospacedFont();
    void itIsOnlyRead();
    void aLowPageScrolls();
};

void KeybindingsViewTest::itReadsSectionBySection()
{
    const Fixture fixture;
    QStringList wanted;
    for (const KeybindingSection& section : keybindingSections()) {
        wanted.append(section.title);
        for (const KeybindingRow& row : section.rows) {
            wanted << row.action << inPlatformWords(row.shortcut);
        }
    }
    QStringList read;
    for (const TextLabel* label : fixture.labels()) {
        read.append(label->text());
    }
    QCOMPARE(read, wanted);
    QCOMPARE(read.size(), 5 + 2 * 18);
}

void KeybindingsViewTest::shortcutsStandAtTheRightInAMonospacedFont()
{
    const Fixture fixture;
    const QList<TextLabel*> labels = fixture.labels();
    qsizetype at = 0;
    for (const KeybindingSection& section : keybindingSections()) {
        QVERIFY(isText(*labels.at(at++), style::headlineFont(), Tint::primary()));
        for (qsizetype row = 0; row < qsizetype(section.rows.size()); ++row) {
            TextLabel& action = *labels.at(at++);
            TextLabel& shortcut = *labels.at(at++);
            QVERIFY(isText(action, style::interfaceFont(style::typeSize::body), Tint::primary()));
            QVERIFY(isText(shortcut, style::monospaced(12), Tint::secondary()));
            // All of them end at one edge.
            QCOMPARE(fixture.placeOf(shortcut).x() + shortcut.width(),
                     fixture.placeOf(*labels.at(2)).x() + labels.at(2)->width());
            QVERIFY(fixture.placeOf(action).x() + action.width() < fixture.placeOf(shortcut).x());
        }
    }
}

void KeybindingsViewTest::itIsOnlyRead()
{
    const Fixture fixture;
    for (const auto* button : fixture.view.findChildren<QAbstractButton*>()) {
        QVERIFY(!button->isVisible());
    }
    QVERIFY(fixture.view.findChildren<QLineEdit*>().isEmpty());
}

void KeybindingsViewTest::aLowPageScrolls()
{
    Fixture fixture;
    auto* area = fixture.view.findChild<QScrollArea*>();
    QCOMPARE(area->verticalScrollBar()->maximum(), 0);
    fixture.view.resize(620, 200);
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 0);
    area->setFocus();
    QTest::keyClick(area, Qt::Key_PageDown);
    QVERIFY(area->verticalScrollBar()->value() > 0);
}

const kelm::test::Registered<KeybindingsViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace keybindings_view_test

#include "keybindings_view_test.moc"
