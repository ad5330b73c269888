#include "platform/style/view/style.h"
#include "platform/text/platform_words.h"
#include "platform/view/labels.h"
#include "settings/view/keybindings_view.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QScrollArea>
#include <QtTest>

namespace keybindings_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The list's labels from top to bottom, and those of a row from left to right.
QList<TextLabel*> labelsOf(const KeybindingsView& view)
{
    QList<TextLabel*> labels = view.findChildren<TextLabel*>();
    std::sort(labels.begin(), labels.end(), [](const TextLabel* one, const TextLabel* other) {
        const QPoint first = one->geometry().center();
        const QPoint second = other->geometry().center();
        return std::abs(first.y() - second.y()) > 4 ? first.y() < second.y() : first.x() < second.x();
    });
    return labels;
}

} // namespace

class KeybindingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void sectionsAndRowsStandInTheirOrder();
    void anActionStandsAtTheLeftAndItsKeyAtTheRight_data();
    void anActionStandsAtTheLeftAndItsKeyAtTheRight();
    void nothingOfItCanBeChanged();
};

void KeybindingsViewTest::sectionsAndRowsStandInTheirOrder()
{
    KeybindingsView view;
    view.resize(620, 500);
    view.show();
    QStringList shown;
    for (const TextLabel* label : labelsOf(view)) {
        shown << label->text();
    }
    QStringList expected;
    for (const char* text : {"File",
                             "New File",
                             "⌘N",
                             "Open File",
                             "⌘O",
                             "Save",
                             "⌘S",
                             "Save As",
                             "⇧⌘S",
                             "Edit",
                             "Undo",
                             "⌘Z",
                             "Redo",
                             "⇧⌘Z",
                             "Find",
                             "⌘F",
                             "Find and Replace",
                             "⌘H",
                             "Toggle Comment",
                             "⌘/",
                             "View",
                             "Toggle Sidebar",
                             "⌘B",
                             "Toggle Terminal",
                             "⌃`",
                             "Toggle Minimap",
                             "⇧⌘M",
                             "Quick Open",
                             "⌘P",
                             "Go to Line",
                             "⌘G",
                             "Run",
                             "Run File",
                             "⌘R",
                             "Stop",
                             "⌘.",
                             "Format",
                             "Format JSON",
                             "⇧⌘J",
                             "Format XML",
                             "⇧⌘X"}) {
        expected << inPlatformWords(QString::fromUtf8(text));
    }
    QCOMPARE(shown, expected);
}

void KeybindingsViewTest::anActionStandsAtTheLeftAndItsKeyAtTheRight_data()
{
    QTest::addColumn<Appearance>("appearance");
    QTest::newRow("dark") << Appearance::dark;
    QTest::newRow("light") << Appearance::light;
}

void KeybindingsViewTest::anActionStandsAtTheLeftAndItsKeyAtTheRight()
{
    QFETCH(Appearance, appearance);
    KeybindingsView view;
    view.setPalette(style::palette(appearance));
    view.resize(620, 500);
    view.show();
    const QList<TextLabel*> labels = labelsOf(view);
    const auto shows = [&](TextLabel& label, const QFont& font, const Tint& tint) {
        TextLabel expected(label.text(), font, tint);
        expected.setPalette(style::palette(appearance));
        return looksLike(label, expected);
    };
    qsizetype at = 0;
    int rightEdge = -1;
    for (const KeybindingSection& section : keybindingSections()) {
        QVERIFY(shows(*labels[at++], style::headlineFont(), Tint::primary()));
        for (const KeybindingRow& row : section.rows) {
            TextLabel& action = *labels[at++];
            TextLabel& key = *labels[at++];
            QCOMPARE(action.text(), row.action);
            QCOMPARE(key.text(), inPlatformWords(row.shortcut));
            QVERIFY(shows(action, style::interfaceFont(style::typeSize::body), Tint::primary()));
            QVERIFY(shows(key, style::monospaced(12), Tint::secondary()));
            QVERIFY(action.geometry().right() < key.x());
            // All keys end at the same edge.
            QVERIFY(rightEdge < 0 || rightEdge == key.geometry().right());
            rightEdge = key.geometry().right();
        }
    }
    QCOMPARE(at, labels.size());
    QVERIFY(rightEdge > view.width() - 60);
}

void KeybindingsViewTest::nothingOfItCanBeChanged()
{
    KeybindingsView view;
    QVERIFY(view.findChildren<QAbstractButton*>().isEmpty());
    QVERIFY(view.findChildren<QLineEdit*>().isEmpty());
    for (const QWidget* part : view.findChildren<QWidget*>()) {
        QVERIFY(part->actions().isEmpty());
    }
}

const kelm::test::Registered<KeybindingsViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace keybindings_view_test

#include "keybindings_view_test.moc"
