#include "platform/text/shown_name.h"
#include "support/test_program.h"

#include <QSet>
#include <QtTest>

namespace shown_name_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// Which sign stands for what cannot be seen.
class ShownNameTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unseenIsSeen_data();
    void unseenIsSeen();
    void noNamePosesAsAnother();
};

void ShownNameTest::unseenIsSeen_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* tag, const QString& name, const QString& shown) {
        QTest::newRow(tag) << name << shown;
    };
    row("plain", u"src/a b-c_1.txt"_s, u"src/a b-c_1.txt"_s);
    row("empty", u""_s, u""_s);
    row("Korean", u"한국어.txt"_s, u"한국어.txt"_s);
    row("Korean in pieces", u"\u1112\u1161\u11ab"_s, u"\u1112\u1161\u11ab"_s);
    row("accents", u"e\u0301"_s, u"e\u0301"_s);
    row("beyond 16 bits", u"a\U0001f600b"_s, u"a\U0001f600b"_s);
    row("line feed", u"a\nb"_s, u"a\u27e8U+000A\u27e9b"_s);
    row("tab and return", u"a\t\rb"_s, u"a\u27e8U+0009\u27e9\u27e8U+000D\u27e9b"_s);
    row("null and escape", QString(u"a\0\x1b"_s), u"a\u27e8U+0000\u27e9\u27e8U+001B\u27e9"_s);
    row("delete", u"a\x7f"_s, u"a\u27e8U+007F\u27e9"_s);
    row("C1", u"a\u0085"_s, u"a\u27e8U+0085\u27e9"_s);
    row("blanks at the ends", u" a b  "_s, u"\u27e8U+0020\u27e9a b\u27e8U+0020\u27e9\u27e8U+0020\u27e9"_s);
    row("nothing but blanks", u"  "_s, u"\u27e8U+0020\u27e9\u27e8U+0020\u27e9"_s);
    row("a blank that is none", u"a\u00a0b\u3000"_s, u"a\u27e8U+00A0\u27e9b\u27e8U+3000\u27e9"_s);
    row("direction", u"a\u202etxt.exe"_s, u"a\u27e8U+202E\u27e9txt.exe"_s);
    row("isolates", u"\u2066a\u2069"_s, u"\u27e8U+2066\u27e9a\u27e8U+2069\u27e9"_s);
    row("no width", u"ma\u200bin\ufeff\u2060\u00ad"_s,
        u"ma\u27e8U+200B\u27e9in\u27e8U+FEFF\u27e9\u27e8U+2060\u27e9\u27e8U+00AD\u27e9"_s);
    row("filler", u"a\u3164\u115f"_s, u"a\u27e8U+3164\u27e9\u27e8U+115F\u27e9"_s);
    row("variation and tag", u"a\ufe0f\U000e0041"_s, u"a\u27e8U+FE0F\u27e9\u27e8U+E0041\u27e9"_s);
    for (const char16_t control : {u'\u061c', u'\u200e', u'\u200f', u'\u202a', u'\u202b', u'\u202c', u'\u202d',
                                   u'\u202e', u'\u2066', u'\u2067', u'\u2068', u'\u2069'}) {
        const QString number = QString::number(control, 16).toUpper().rightJustified(4, u'0');
        row(qPrintable(u"direction "_s + number), u"exe."_s + QChar(control) + u"fdp.py"_s,
            u"exe.\u27e8U+"_s + number + u"\u27e9fdp.py"_s);
    }
    row("Persian", u"\u0645\u06cc\u200c\u062e\u0648"_s, u"\u0645\u06cc\u200c\u062e\u0648"_s);
    row("Persian, at the end", u"\u0645\u06cc\u200c"_s, u"\u0645\u06cc\u27e8U+200C\u27e9"_s);
    row("Persian, twice", u"\u0645\u200c\u200c\u062e"_s, u"\u0645\u27e8U+200C\u27e9\u27e8U+200C\u27e9\u062e"_s);
    row("Hindi", u"\u0915\u094d\u200d\u0937 \u0915\u094d\u200c\u0937"_s,
        u"\u0915\u094d\u200d\u0937 \u0915\u094d\u200c\u0937"_s);
    row("joiners among Latin letters", u"a\u200cb\u200dc"_s, u"a\u27e8U+200C\u27e9b\u27e8U+200D\u27e9c"_s);
    row("a family", u"\U0001f468\U0001f3fd\u200d\U0001f469\u200d\U0001f467.txt"_s,
        u"\U0001f468\U0001f3fd\u200d\U0001f469\u200d\U0001f467.txt"_s);
    row("a heart", u"\u2764\ufe0f\u200d\U0001f525 1\ufe0f\u20e3"_s, u"\u2764\ufe0f\u200d\U0001f525 1\ufe0f\u20e3"_s);
    row("pictograph signs that do nothing", u"1\ufe0f\u2764\ufe0f\ufe0f"_s,
        u"1\u27e8U+FE0F\u27e9\u2764\ufe0f\u27e8U+FE0F\u27e9"_s);
    row("line separator", u"a\u2028"_s, u"a\u27e8U+2028\u27e9"_s);
    row("bytes", u"caf"_s + QChar(0xdce9) + u".txt"_s, u"caf\u27e8E9\u27e9.txt"_s);
    row("lone surrogate", u"a"_s + QChar(0xd800), u"a\u27e8U+D800\u27e9"_s);
    row("a sign", u"a\u27e8U+202E\u27e9"_s, u"a\u27e8U+27E8\u27e9U+202E\u27e9"_s);
}

void ShownNameTest::unseenIsSeen()
{
    QFETCH(QString, name);
    QTEST(shownName(name), "shown");
}

void ShownNameTest::noNamePosesAsAnother()
{
    // All names of up to four pieces, of pieces that are signs or are shown by one.
    const QStringList pieces{u"a"_s,      u" "_s,      u"\n"_s,     u"U+000A"_s, u"U+0020"_s,           u"\u200b"_s,
                             u"\u27e8"_s, u"U+200B"_s, u"\u27e9"_s, u"E9"_s,     QString(QChar(0xdce9))};
    QStringList names{QString()};
    QSet<QString> all{QString()};
    for (int length = 0; length < 4; ++length) {
        QStringList longer;
        for (const QString& name : std::as_const(names)) {
            for (const QString& piece : pieces) {
                longer.append(name + piece);
                all.insert(longer.last());
            }
        }
        names = longer;
    }
    QSet<QString> shown;
    for (const QString& name : std::as_const(all)) {
        shown.insert(shownName(name));
    }
    QVERIFY(all.size() > 10000);
    QCOMPARE(shown.size(), all.size());
}

const Registered<ShownNameTest> registered;

} // namespace shown_name_test

#include "shown_name_test.moc"
