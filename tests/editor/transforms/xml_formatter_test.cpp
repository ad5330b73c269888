#include "editor/transforms/xml_formatter.h"
#include "editor/transforms/xml_markup.h"
#include "editor/transforms/xml_well_formed.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QTemporaryFile>
#include <QtTest>

namespace xml_formatter_test {

using namespace kelm;

class XmlFormatterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void basicFormatPutsEachTagAndRunOnALine_data();
    void basicFormatPutsEachTagAndRunOnALine();
    void basicFormatIndentsByTheGivenBlanks();
    void basicFormatGivesBackWhatWouldGrowWithoutBound();
    void wellFormedTextGetsFourBlanksALevel_data();
    void wellFormedTextGetsFourBlanksALevel();
    void otherTextGetsTheBasicForm_data();
    void otherTextGetsTheBasicForm();
    void unpairedSurrogatesComeBack();
    void entitiesAreNeitherLoadedNorExpanded();
    void deepAndLongDocumentsAreNeitherCutNorTooMuch();
    void signsThatAreNoAttributesDoNotCount_data();
    void signsThatAreNoAttributesDoNotCount();
    void onlyWhiteSpaceChanges();
};

void XmlFormatterTest::basicFormatPutsEachTagAndRunOnALine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("formatted");
    const auto row = [](const char* name, const char* text, const char* formatted) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(formatted);
    };
    row("nested", "<a><b>x</b><br/></a>", "<a>\n  <b>\n    x\n  </b>\n  <br/>\n</a>");
    row("closing at no level", "</a>", "</a>");
    row("closing at no level keeps the level", "</a><b>x", "</a>\n<b>\n  x");
    row("empty", "", "");
    row("blanks only", " \t\r\n ", "");
    row("text only", "  some \t text ", "some \t text");
    row("declaration and comment open no level", "<?xml version='1.0'?><!DOCTYPE a><!-- c --><a>x</a>",
        "<?xml version='1.0'?>\n<!DOCTYPE a>\n<!-- c -->\n<a>\n  x\n</a>");
    row("comment with a greater-than", "<!-- a>b --><c/>", "<!-- a>\nb -->\n  <c/>");
    row("greater-than in a value", "<a t='1>2'>x</a>", "<a t='1>\n  2'>\n    x\n  </a>");
    row("line ends are dropped", "<a\nb='1'>one\r\ntwo</a>", "<ab='1'>\n  onetwo\n</a>");
    row("unclosed tag", "<a><b", "<a>\n  <b");
    row("tag in a tag", "<a <b>x", "<a\n<b>\n  x");
    row("greater-than alone", "a>b", "a>\n  b");
    row("blanks around", "  <a>  x  </a>  ", "<a>\n  x\n</a>");
    row("other spaces stay inside and go at the ends", "\u3000x<a>\u3000y</a>\u2028", "x\n<a>\n  \u3000y\n</a>");
    row("Korean", "<글>한글</글>", "<글>\n  한글\n</글>");
}

void XmlFormatterTest::basicFormatPutsEachTagAndRunOnALine()
{
    QFETCH(QString, text);
    QFETCH(QString, formatted);
    QCOMPARE(XMLFormatter::basicFormat(text, 2), formatted);
}

void XmlFormatterTest::basicFormatIndentsByTheGivenBlanks()
{
    const QString text = QStringLiteral("<a><b/></a>");
    QCOMPARE(XMLFormatter::basicFormat(text, 4), QStringLiteral("<a>\n    <b/>\n</a>"));
    QCOMPARE(XMLFormatter::basicFormat(text, 0), QStringLiteral("<a>\n<b/>\n</a>"));
    QCOMPARE(XMLFormatter::basicFormat(text, -1), QStringLiteral("<a>\n<b/>\n</a>"));
}

void XmlFormatterTest::basicFormatGivesBackWhatWouldGrowWithoutBound()
{
    const QString deep = QStringLiteral("<a>").repeated(1'000'000);
    QCOMPARE(XMLFormatter::basicFormat(deep, 2), deep);
    const QString shallow = QStringLiteral("<a><b/>");
    QCOMPARE(XMLFormatter::basicFormat(shallow, std::numeric_limits<qsizetype>::max()), shallow);
    QCOMPARE(XMLFormatter::basicFormat(deep, 0).size(), deep.size() + 1'000'000 - 1);
}

void XmlFormatterTest::wellFormedTextGetsFourBlanksALevel_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("formatted");
    const auto row = [](const char* name, const char* text, const char* formatted) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(formatted);
    };
    row("nested", "<a><b>x</b><br/></a>", "<a>\n    <b>x</b>\n    <br/>\n</a>");
    row("already on lines", "<a>\n\n<b>\n<c/>\n</b>\n</a>\n", "<a>\n    <b>\n        <c/>\n    </b>\n</a>");
    row("declaration", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>");
    row("no declaration", "<a/>", "<a/>");
    row("an encoding of another kind", "<?xml version='1.0' encoding='UTF-16'?><a>한</a>",
        "<?xml version='1.0' encoding='UTF-16'?>\n<a>한</a>");
    row("an unknown encoding", "<?xml version='1.0' encoding='none'?><a>é</a>",
        "<?xml version='1.0' encoding='none'?>\n<a>é</a>");
    row("comments, instructions, document type",
        "<!-- 1 --><!DOCTYPE a [ <!ELEMENT a ANY> <!-- ]> ' --> <?p ]>'?> ]><a><!-- 2\n 2 --><?p q?></a><!-- 3 -->",
        "<!-- 1 -->\n<!DOCTYPE a [ <!ELEMENT a ANY> <!-- ]> ' --> <?p ]>'?> ]>\n<a>\n    <!-- 2\n 2 -->\n    <?p "
        "q?>\n</a>\n"
        "<!-- 3 -->");
    row("character data section", "<a><b><![CDATA[ <x> & ]]></b></a>", "<a>\n    <b><![CDATA[ <x> & ]]></b>\n</a>");
    row("mixed content is untouched", "<a><p>one <b>two</b>\n <i><u/></i> three</p></a>",
        "<a>\n    <p>one <b>two</b>\n <i><u/></i> three</p>\n</a>");
    row("an entity is text", "<a><b>&amp;<c/></b><d>&#10;</d></a>",
        "<a>\n    <b>&amp;<c/></b>\n    <d>&#10;</d>\n</a>");
    row("space preserved", "<a><b xml:space='preserve'> <c/>\n</b><d z='preserve'> <e/></d></a>",
        "<a>\n    <b xml:space='preserve'> <c/>\n</b>\n    <d z='preserve'>\n        <e/>\n    </d>\n</a>");
    row("attributes", "<a  x = '1'\n\ty=\"a  >\n b\" ><b\n/></a >", "<a x='1' y=\"a  >\n b\">\n    <b/>\n</a>");
    row("both forms of an empty element", "<a><b></b><c/></a>", "<a>\n    <b></b>\n    <c/>\n</a>");
    row("blanks alone are content", "<a><b> </b></a>", "<a>\n    <b> </b>\n</a>");
    row("a line break alone is layout", "<a><b>\n  </b></a>", "<a>\n    <b></b>\n</a>");
    row("undeclared prefix", "<x:a><b/></x:a>", "<x:a>\n    <b/>\n</x:a>");
    row("a name beyond the basic plane", "<😀><b/></😀>", "<😀>\n    <b/>\n</😀>");
    row("no-break space is text", "<a>\u00a0<b/></a>", "<a>\u00a0<b/></a>");
    row("CRLF", "<a>\r\n<b>x\r\ny</b>\r\n</a>\r\n", "<a>\n    <b>x\r\ny</b>\n</a>");
}

void XmlFormatterTest::wellFormedTextGetsFourBlanksALevel()
{
    QFETCH(QString, text);
    QFETCH(QString, formatted);
    QCOMPARE(formatXml(text), formatted);
    QCOMPARE(formatXml(formatted), formatted);
    const QString mark(QChar(0xfeff));
    if (!text.isEmpty()) {
        QCOMPARE(formatXml(mark + text), mark + formatted);
    }
}

void XmlFormatterTest::otherTextGetsTheBasicForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("formatted");
    const auto row = [](const char* name, const char* text, const char* formatted) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(formatted);
    };
    row("empty", "", "");
    row("plain", "hello", "hello");
    row("unclosed", "<a><b>x</a>", "<a>\n  <b>\n    x\n  </a>");
    row("two roots", "<a/><b/>", "<a/>\n<b/>");
    row("text behind", "<a/>x", "<a/>\nx");
    row("attribute without a value", "<a b><c/></a>", "<a b>\n  <c/>\n</a>");
    row("attribute twice", "<a b='1' b='2'/>", "<a b='1' b='2'/>");
    row("unknown entity", "<a>&b;</a>", "<a>\n  &b;\n</a>");
    row("an entity that is not well formed", "<!DOCTYPE a [<!ENTITY e '<x>'>]><a>&e;</a>",
        "<!DOCTYPE a [\n<!ENTITY e '\n<x>\n  '>\n    ]>\n      <a>\n        &e;\n      </a>");
    row("ampersand", "<a>b & c</a>", "<a>\n  b & c\n</a>");
    row("declaration not in front", " <?xml version='1.0'?><a/>", "<?xml version='1.0'?>\n<a/>");
    row("unclosed comment", "<a><!-- </a>", "<a>\n  <!--\n</a>");
    QTest::newRow("NUL behind the root") << QStringLiteral("<a/>") + QChar(0) + QStringLiteral("<")
                                         << QStringLiteral("<a/>\n") + QChar(0) + QStringLiteral("\n<");
    QTest::newRow("control character") << QStringLiteral("<a>\u0001</a>") << QStringLiteral("<a>\n  \u0001\n</a>");
}

void XmlFormatterTest::otherTextGetsTheBasicForm()
{
    QFETCH(QString, text);
    QFETCH(QString, formatted);
    QCOMPARE(formatXml(text), formatted);
}

void XmlFormatterTest::unpairedSurrogatesComeBack()
{
    for (const char16_t unit : {u'\xd800', u'\xdc00'}) {
        const QString text = QStringLiteral("<a><b/>%1</a>").arg(QChar(unit));
        QCOMPARE(formatXml(text), text);
    }
}

void XmlFormatterTest::entitiesAreNeitherLoadedNorExpanded()
{
    QTemporaryFile secret;
    QVERIFY(secret.open());
    secret.write("<not closed");
    secret.flush();
    // Were the file loaded, the document would not be well formed.
    const QString external =
        QStringLiteral("<!DOCTYPE a [<!ENTITY e SYSTEM \"file://%1\"><!ENTITY % p SYSTEM \"file://%1\"> "
                       "%p;]>")
            .arg(secret.fileName());
    QCOMPARE(formatXml(external + QStringLiteral("<a><b>&e;</b></a>")),
             external + QStringLiteral("\n<a>\n    <b>&e;</b>\n</a>"));
    const QString internal = QStringLiteral("<!DOCTYPE a [<!ENTITY e \"<x>y</x>\">]>");
    QCOMPARE(formatXml(internal + QStringLiteral("<a><b c='&lt;'>&e;</b><d/></a>")),
             internal + QStringLiteral("\n<a>\n    <b c='&lt;'>&e;</b>\n    <d/>\n</a>"));

    QString laughs = QStringLiteral("<!DOCTYPE l [<!ENTITY l0 \"lol\">");
    for (int i = 1; i <= 30; ++i) {
        laughs += QStringLiteral("<!ENTITY l%1 \"%2\">").arg(i).arg(QStringLiteral("&l%1;").arg(i - 1).repeated(10));
    }
    laughs += QStringLiteral("]>");
    const QString inText = laughs + QStringLiteral("<l>&l30;</l>");
    const QString inValue = laughs + QStringLiteral("<l a='&l30;'/>");
    // Expanded, these would not fit into the world. Whatever the library says of them, no entity is replaced.
    QVERIFY(formatXml(inText).contains(u"&l30;"));
    QVERIFY(formatXml(inText).size() < 2 * inText.size());
    QVERIFY(formatXml(inValue).contains(u"<l a='&l30;'/>"));
    const QString loop = QStringLiteral("<!DOCTYPE l [<!ENTITY a \"&b;\"><!ENTITY b \"&a;\">]><l>&a;</l>");
    QVERIFY(formatXml(loop).contains(u"&a;"));
}

void XmlFormatterTest::deepAndLongDocumentsAreNeitherCutNorTooMuch()
{
    const auto nested = [](int depth) {
        return QStringLiteral("<a>").repeated(depth) + QStringLiteral("<b/>") + QStringLiteral("</a>").repeated(depth);
    };
    const QString formatted = formatXml(nested(1000));
    QCOMPARE(formatted.count(u'\n'), 2000);
    QCOMPARE(formatted.count(u' '), 4 * 1000 * 1000);
    const QString deep = nested(100'000);
    QCOMPARE(formatXml(deep), deep);

    const QString longText = QStringLiteral("<a><b>%1</b></a>").arg(QStringLiteral("x y\n").repeated(5'000'000));
    QCOMPARE(formatXml(longText).size(), longText.size() + 6);
    QString attributes = QStringLiteral("<a");
    for (int i = 0; i < 200'000; ++i) {
        attributes += QStringLiteral(" a%1='1'").arg(i);
    }
    attributes += QStringLiteral("><b/></a>");
    QCOMPARE(formatXml(attributes), attributes);
    attributes.replace(0, 2, QStringLiteral("<a b='>'"));
    QCOMPARE(formatXml(attributes), attributes);
    // The most that are not too much, in a tag that ends the reading at once.
    const QString faulty = QStringLiteral(" 1='x'").repeated(50'000);
    QCOMPARE(checkXml(QStringLiteral("<a%1/>").arg(faulty)), XmlVerdict::malformed);
    QCOMPARE(checkXml(QStringLiteral("<a%1 y='z'/>").arg(faulty)), XmlVerdict::tooMuch);
    // Behind a fault that hides the tag nothing is read on, which would take minutes.
    const QString hidden = QStringLiteral("<r><c<d e=\"") + attributes.repeated(12) + QStringLiteral("</r>");
    QCOMPARE(checkXml(hidden), XmlVerdict::malformed);
    const QString entity = QStringLiteral("<!DOCTYPE a [<!ENTITY e \"%1\">]><a>&e;</a>").arg(attributes);
    QCOMPARE(formatXml(entity), entity);
}

void XmlFormatterTest::signsThatAreNoAttributesDoNotCount_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("formatted");
    const QString lines = QStringLiteral("k=v\n").repeated(60'000);
    const QString signs = QString(60'000, u'=');
    const auto row = [](const char* name, const QString& text, const QString& formatted) {
        QTest::newRow(name) << text << formatted;
    };
    row("character data", QStringLiteral("<a><d><![CDATA[") + lines + QStringLiteral("]]></d></a>"),
        QStringLiteral("<a>\n    <d><![CDATA[") + lines + QStringLiteral("]]></d>\n</a>"));
    row("a comment", QStringLiteral("<a><!--") + signs + QStringLiteral("--><b/></a>"),
        QStringLiteral("<a>\n    <!--") + signs + QStringLiteral("-->\n    <b/>\n</a>"));
    row("an instruction", QStringLiteral("<a><?p ") + signs + QStringLiteral("?><b/></a>"),
        QStringLiteral("<a>\n    <?p ") + signs + QStringLiteral("?>\n    <b/>\n</a>"));
    row("a value", QStringLiteral("<a v='") + signs + QStringLiteral("'><b/></a>"),
        QStringLiteral("<a v='") + signs + QStringLiteral("'>\n    <b/>\n</a>"));
    const QString deep = QStringLiteral("<c>").repeated(300) + QStringLiteral("</c>").repeated(300);
    row("a word in a comment", QStringLiteral("<a><!-- <!ENTITY -->") + deep + QStringLiteral("<b>x\ny</b></a>"), {});
}

void XmlFormatterTest::signsThatAreNoAttributesDoNotCount()
{
    QFETCH(QString, text);
    QFETCH(QString, formatted);
    QCOMPARE(checkXml(text), XmlVerdict::wellFormed);
    if (!formatted.isEmpty()) {
        QCOMPARE(formatXml(text), formatted);
    }
}

void XmlFormatterTest::onlyWhiteSpaceChanges()
{
    test::RandomText random;
    const QStringList leaves{QStringLiteral("<b/>"),
                             QStringLiteral("<!-- c > c -->"),
                             QStringLiteral("<c d = 'e>f' />"),
                             QStringLiteral("<?p q > r?>"),
                             QStringLiteral(" \n"),
                             QStringLiteral("text"),
                             QStringLiteral("&lt;"),
                             QStringLiteral("<![CDATA[<]]>"),
                             QStringLiteral("<g>한 글</g>"),
                             QStringLiteral("\t")};
    const std::function<QString(int)> element = [&](int depth) -> QString {
        // Mostly without text, so that most elements are broken into lines.
        const qsizetype kinds = random.below(3) == 0 ? leaves.size() : 5;
        QString content;
        for (qsizetype i = random.below(5); i > 0; --i) {
            content += depth > 0 && random.below(2) == 0 ? element(depth - 1) : leaves[random.below(kinds)];
        }
        return QStringLiteral("<a  b='1'>") + content + QStringLiteral("</a>");
    };
    const auto packed = [](QString text) { return text.removeIf([](QChar unit) { return isXmlBlank(unit); }); };
    for (int i = 0; i < 500; ++i) {
        const QString text = element(5);
        QVERIFY2(checkXml(text) == XmlVerdict::wellFormed, qPrintable(text));
        const QString once = formatXml(text);
        QCOMPARE(packed(once), packed(text));
        QVERIFY2(checkXml(once) == XmlVerdict::wellFormed, qPrintable(once));
        QCOMPARE(formatXml(once), once);
    }
}

const kelm::test::Registered<XmlFormatterTest> registered;

} // namespace xml_formatter_test

#include "xml_formatter_test.moc"
