#include "platform/view/plain_help.h"
#include "support/test_program.h"

#include <QTextDocument>
#include <QtTest>

namespace plain_help_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class PlainHelpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aToolTipReadsAsTheText_data();
    void aToolTipReadsAsTheText();
    void longLinesWrap();
};

void PlainHelpTest::aToolTipReadsAsTheText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("plain") << u"fatal: no such branch\n"_s;
    QTest::newRow("ampersand") << u"a & b"_s;
    QTest::newRow("entity") << u"a &amp; b"_s;
    QTest::newRow("entity that a tool tip takes for markup") << u"a &lt; b"_s;
    QTest::newRow("markup") << u"<b>bold</b>"_s;
    QTest::newRow("markup over lines") << u"one\n<i>two</i>\n   three"_s;
    QTest::newRow("document") << u"<!DOCTYPE html>"_s;
    QTest::newRow("instruction") << u"<?xml version=\"1.0\"?>"_s;
    QTest::newRow("unknown tag") << u"git <command>"_s;
    QTest::newRow("long line") << u"short\n"_s + QString(300, u'x') + u" <y>  &z\n"_s;
    QTest::newRow("Korean") << u"<b>저장소</b> & 가지"_s;
}

void PlainHelpTest::aToolTipReadsAsTheText()
{
    QFETCH(QString, text);
    const QString help = plainHelp(text);
    QString shown = help;
    if (Qt::mightBeRichText(help)) {
        QTextDocument document;
        document.setHtml(help);
        shown = document.toPlainText();
    }
    QCOMPARE(shown, text);
}

void PlainHelpTest::longLinesWrap()
{
    QVERIFY(!Qt::mightBeRichText(plainHelp(u"a "_s + QString(118, u'x') + u'\n' + QString(120, u'x'))));
    QVERIFY(Qt::mightBeRichText(plainHelp(u"a "_s + QString(119, u'x'))));
    // There is nowhere to wrap.
    QVERIFY(!Qt::mightBeRichText(plainHelp(QString(300, u'x'))));
}

const kelm::test::Registered<PlainHelpTest> registered(kelm::test::Toolkit::widgets);

} // namespace plain_help_test

#include "plain_help_test.moc"
