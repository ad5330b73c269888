#include "editor/folding/tag_reader.h"
#include "support/test_program.h"

#include <QtTest>

namespace tag_reader_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class TagReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tagsAreReadInTheirOrder_data();
    void tagsAreReadInTheirOrder();
    void aPartMayBeginInATag_data();
    void aPartMayBeginInATag();
};

namespace {

/// The tags with their lines, and what is told at the end.
QString read(const QString& text, bool startsInTag)
{
    TagReader reader(text, startsInTag);
    QString result;
    for (TagReader::Tag tag; reader.next(tag);) {
        result += QStringLiteral("%1%2:%3 ").arg(tag.isOpening ? u""_s : u"/"_s, tag.name.toString()).arg(tag.line);
    }
    return result + QStringLiteral("%1%2").arg(reader.lineFeeds()).arg(reader.endsInTag() ? u" open"_s : u""_s);
}

} // namespace

void TagReaderTest::tagsAreReadInTheirOrder_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tags");
    const auto row = [](const char* name, const QString& text, const char* tags) {
        QTest::newRow(name) << text << QString::fromLatin1(tags);
    };
    row("nothing", QString(), "0");
    row("plain text", u"a < b > c\n\n"_s, "2");
    row("an element", u"<a>\nx\n</a>\n"_s, "a:0 /a:2 3");
    row("a tag at the end", u"\n<a>"_s, "a:1 1");
    row("a closing tag at the end", u"\n</a>"_s, "/a:1 1");
    row("attributes", u"<a b='c'\n d>\n</a>"_s, "a:0 /a:2 2");
    row("an element without content", u"<br/>\n<br />"_s, "br:0 br:1 1");
    row("letters and digits", u"<h1></h1><ZzA9></ZzA9>"_s, "h1:0 /h1:0 ZzA9:0 /ZzA9:0 0");
    row("a digit begins no name", u"<1></1>"_s, "0");
    row("no name", u"<></>< a></ a>"_s, "0");
    row("a name that goes on", u"<a_><a-b><a\u00e9><a\u0663><a\u0301><a\u200d>"_s, "a:0 0");
    row("a name beyond the basic plane", u"<a\U0001d4b3><a\U0001f600>"_s, "a:0 0");
    row("a sign behind the name", u"<a\u00b7b><a\u2014>"_s, "a:0 a:0 0");
    row("a closing tag with more than a name", u"</a ></a\n></b c></b-></c>"_s, "/c:1 1");
    row("a tag in a tag", u"<a <b><c>"_s, "a:0 c:0 0");
    row("a closing tag in a tag", u"<a </b> c></a>"_s, "a:0 /b:0 /a:0 0");
    row("a sign in a value ends the tag", u"<a b=\"<c>\"><d>"_s, "a:0 d:0 0");
    row("a tag without an end", u"<a>\n<b c\n"_s, "a:0 b:1 2 open");
    row("a name without an end", u"<a"_s, "0");
    row("a closing tag without an end", u"</a"_s, "0");
    row("nothing is a tag behind one without an end", u"<a\n<b\n</c>"_s, "a:0 /c:2 2");
    row("signs alone", u"<"_s, "0");
    row("signs of a closing tag alone", u"</"_s, "0");
    row("other line ends", u"<a>\r<b>\r\n<c>\u2028<d>"_s, "a:0 b:0 c:1 d:1 1");
    row("comments are not known", u"<!-- <a> --><!DOCTYPE b><?c d?>"_s, "a:0 0");
}

void TagReaderTest::tagsAreReadInTheirOrder()
{
    QFETCH(QString, text);
    QTEST(read(text, false), "tags");
}

void TagReaderTest::aPartMayBeginInATag_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tags");
    const auto row = [](const char* name, const QString& text, const char* tags) {
        QTest::newRow(name) << text << QString::fromLatin1(tags);
    };
    row("up to its end", u"<b>\n<c>\n"_s, "c:1 2");
    row("its end comes first", u"><b>"_s, "b:0 0");
    row("it goes on", u"<b\n"_s, "1 open");
    row("closing tags count in it", u"</b\n</c></d>"_s, "/c:1 /d:1 1");
    row("nothing", QString(), "0 open");
}

void TagReaderTest::aPartMayBeginInATag()
{
    QFETCH(QString, text);
    QTEST(read(text, true), "tags");
}

const kelm::test::Registered<TagReaderTest> registered;

} // namespace tag_reader_test

#include "tag_reader_test.moc"
