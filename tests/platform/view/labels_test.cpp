#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "support/test_program.h"

#include <QApplication>
#include <QtTest>

namespace labels_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class LabelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void tintsFollowTheAppearanceAndMultiplyOpacities();
    void aCutTextIsItsHelp();
    void aLabelThatGivesWayShrinks();
    void textIsNeverMarkup();
    void aWrappedLabelTakesItsTintInBothAppearances();
};

void LabelsTest::tintsFollowTheAppearanceAndMultiplyOpacities()
{
    QCOMPARE(Tint::accent().in(Appearance::dark), systemColor(SystemColor::accent, Appearance::dark));
    QCOMPARE(Tint::accent().in(Appearance::light), systemColor(SystemColor::accent, Appearance::light));
    const QColor thin = Tint::secondary().at(0.5).at(0.4).in(Appearance::dark);
    QVERIFY(qAbs(thin.alphaF() - 0.6 * 0.2) < 0.003);
    QCOMPARE(Tint(QColor(1, 2, 3)).in(Appearance::light), QColor(1, 2, 3));
    QCOMPARE(Tint::clear().in(Appearance::light).alpha(), 0);
}

void LabelsTest::aCutTextIsItsHelp()
{
    TextLabel label(u"a rather long <text>"_s, style::interfaceFont(13), Tint::primary());
    label.resize(label.sizeHint());
    label.show();
    QCOMPARE(label.toolTip(), QString());
    label.resize(40, label.height());
    QCOMPARE(label.toolTip(), u"a rather long <text>"_s);
    label.setText(u"a"_s);
    QCOMPARE(label.toolTip(), QString());
    QCOMPARE(label.accessibleName(), u"a"_s);
}

void LabelsTest::aLabelThatGivesWayShrinks()
{
    TextLabel label(u"a rather long text"_s, style::interfaceFont(13), Tint::primary());
    QVERIFY(label.minimumSizeHint().width() < label.sizeHint().width() / 2);
    label.setGivesWay(false);
    QCOMPARE(label.minimumSizeHint().width(), label.sizeHint().width());
}

void LabelsTest::textIsNeverMarkup()
{
    const WrappedLabel label(u"<b>bold</b>"_s, style::interfaceFont(13), Tint::primary());
    QCOMPARE(label.textFormat(), Qt::PlainText);
}

void LabelsTest::aWrappedLabelTakesItsTintInBothAppearances()
{
    QWidget window;
    auto* label = new WrappedLabel(u"text"_s, style::interfaceFont(13), Tint::secondary(), &window);
    window.show();
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(style::palette(appearance));
        QTRY_COMPARE(label->palette().color(QPalette::WindowText), Tint::secondary().in(appearance));
    }
}

const kelm::test::Registered<LabelsTest> registered(kelm::test::Toolkit::widgets);

} // namespace labels_test

#include "labels_test.moc"
