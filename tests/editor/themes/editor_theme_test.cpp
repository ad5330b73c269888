#include "editor/themes/editor_theme.h"
#include "support/test_program.h"
#include "support/theme_files.h"

#include <QFile>
#include <QJsonArray>
#include <QSet>
#include <QtTest>

namespace editor_theme_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList colorKeys = {u"backgroundColor"_s, u"textColor"_s,        u"cursorColor"_s,   u"selectionColor"_s,
                               u"lineNumberColor"_s, u"currentLineColor"_s, u"gutterColor"_s,   u"keywordColor"_s,
                               u"stringColor"_s,     u"commentColor"_s,     u"numberColor"_s,   u"typeColor"_s,
                               u"functionColor"_s,   u"variableColor"_s,    u"operatorColor"_s, u"preprocessorColor"_s,
                               u"attributeColor"_s};
const QStringList channelKeys = {u"red"_s, u"green"_s, u"blue"_s, u"alpha"_s};

QByteArray toJson(const QJsonObject& object)
{
    return QJsonDocument(object).toJson();
}

QString hexadecimal(const CodableColor& color)
{
    return color.toColor().name(QColor::HexRgb).toUpper();
}

} // namespace

class EditorThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hexadecimalTextGivesItsColor_data();
    void hexadecimalTextGivesItsColor();
    void channelsAreClampedOnlyForPainting();
    void builtInThemesStandInTheirOrder();
    void eachBuiltInThemeHasItsColors_data();
    void eachBuiltInThemeHasItsColors();
    void aThemeComesBackFromItsFile();
    void eachFieldCountsInEqualityAndHash();
    void aMissingKeyRejectsTheTheme_data();
    void aMissingKeyRejectsTheTheme();
    void aValueOfAnotherTypeRejectsTheTheme_data();
    void aValueOfAnotherTypeRejectsTheTheme();
    void numbersLoadAsTheyAre();
    void unknownKeysAreIgnored();
    void textsThatAreNoObjectAreRejected_data();
    void textsThatAreNoObjectAreRejected();
    void theSampleOfTheDocumentsIsATheme();
};

void EditorThemeTest::hexadecimalTextGivesItsColor_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("rgb");
    QTest::newRow("upper case") << u"#282A36"_s << 0x282a36;
    QTest::newRow("lower case") << u"#282a36"_s << 0x282a36;
    QTest::newRow("no hash") << u"282A36"_s << 0x282a36;
    QTest::newRow("white space around") << u" \n\t#282A36\u00a0\u2028"_s << 0x282a36;
    QTest::newRow("hashes anywhere") << u"##28#2A36#"_s << 0x282a36;
    QTest::newRow("white space behind the hash") << u"# 282A36"_s << 0x282a36;
    QTest::newRow("prefix") << u"0x282A36"_s << 0x282a36;
    QTest::newRow("short") << u"#FFF"_s << 0x000fff;
    QTest::newRow("eight digits keep the lowest") << u"#11223344"_s << 0x223344;
    QTest::newRow("stops at another character") << u"#12g456"_s << 0x000012;
    QTest::newRow("saturates to white") << u"#1000000000000000000"_s << 0xffffff;
    QTest::newRow("no number") << u"zz"_s << 0;
    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("hash only") << u"#"_s << 0;
}

void EditorThemeTest::hexadecimalTextGivesItsColor()
{
    QFETCH(QString, text);
    QFETCH(int, rgb);
    const CodableColor color = CodableColor::fromHexadecimal(text);
    QCOMPARE(color.red, (rgb >> 16 & 0xff) / 255.0);
    QCOMPARE(color.green, (rgb >> 8 & 0xff) / 255.0);
    QCOMPARE(color.blue, (rgb & 0xff) / 255.0);
    QCOMPARE(color.alpha, 1.0);
}

void EditorThemeTest::channelsAreClampedOnlyForPainting()
{
    QCOMPARE(CodableColor(), (CodableColor{0, 0, 0, 1}));
    const CodableColor color{-1, 2, 0.5, 7};
    QCOMPARE(color.red, -1.0);
    QCOMPARE(color.toColor().redF(), 0.0F);
    QCOMPARE(color.toColor().greenF(), 1.0F);
    QCOMPARE(color.toColor().blue(), 128);
    QCOMPARE(color.toColor().alphaF(), 1.0F);
    QCOMPARE((CodableColor{0, 0, 0, 0.5}).toColor().alpha(), 128);
}

void EditorThemeTest::builtInThemesStandInTheirOrder()
{
    QStringList names;
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        names << theme.name;
        QCOMPARE(theme.isDark, theme.name != u"GitHub Light");
    }
    QCOMPARE(names, (QStringList{u"Monokai"_s, u"Dracula"_s, u"Solarized Dark"_s, u"One Dark"_s, u"GitHub Light"_s,
                                 u"Neon Kelm"_s}));
    QVERIFY(EditorTheme::monokai() == EditorTheme::allThemes().at(0));
    QVERIFY(EditorTheme::dracula() == EditorTheme::allThemes().at(1));
    QVERIFY(EditorTheme::solarizedDark() == EditorTheme::allThemes().at(2));
    QVERIFY(EditorTheme::oneDark() == EditorTheme::allThemes().at(3));
    QVERIFY(EditorTheme::githubLight() == EditorTheme::allThemes().at(4));
    QVERIFY(EditorTheme::neonKelm() == EditorTheme::allThemes().at(5));
    QCOMPARE(&EditorTheme::monokai(), &EditorTheme::monokai());
}

void EditorThemeTest::eachBuiltInThemeHasItsColors_data()
{
    QTest::addColumn<QString>("colors");
    QTest::newRow("Monokai") << u"#272822 #F8F8F2 #F8F8F0 #49483E #75715E #3E3D32 #272822 #F92672 #E6DB74 #75715E "
                                "#AE81FF #66D9EF #A6E22E #FD971F #F92672 #F92672 #A6E22E"_s;
    QTest::newRow("Dracula") << u"#282A36 #F8F8F2 #F8F8F2 #44475A #6272A4 #44475A #282A36 #FF79C6 #F1FA8C #6272A4 "
                                "#BD93F9 #8BE9FD #50FA7B #FFB86C #FF79C6 #FF79C6 #50FA7B"_s;
    QTest::newRow("Solarized Dark") << u"#002B36 #839496 #839496 #073642 #586E75 #073642 #002B36 #859900 #2AA198 "
                                       "#586E75 #D33682 #B58900 #268BD2 #CB4B16 #859900 #CB4B16 #268BD2"_s;
    QTest::newRow("One Dark") << u"#282C34 #ABB2BF #528BFF #3E4451 #4B5263 #2C313C #282C34 #C678DD #98C379 #5C6370 "
                                 "#D19A66 #E5C07B #61AFEF #E06C75 #56B6C2 #C678DD #D19A66"_s;
    QTest::newRow("GitHub Light") << u"#FFFFFF #24292E #24292E #C8C8FA #959DA5 #FFFBDD #FAFBFC #D73A49 #032F62 "
                                     "#6A737D #005CC5 #6F42C1 #6F42C1 #E36209 #D73A49 #D73A49 #6F42C1"_s;
    QTest::newRow("Neon Kelm") << u"#090611 #F7F4FF #D61CFF #8B1EFF #6C6788 #131122 #131122 #D61CFF #FF7BE5 #6C6788 "
                                  "#00CFFF #B8FF35 #33F5FF #FF4FCF #F03DFF #FF3FA8 #D7FF70"_s;
}

void EditorThemeTest::eachBuiltInThemeHasItsColors()
{
    QFETCH(QString, colors);
    const QList<EditorTheme>& all = EditorTheme::allThemes();
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const auto theme = std::find_if(all.begin(), all.end(), [&](const EditorTheme& each) { return each.name == name; });
    QVERIFY(theme != all.end());
    QStringList found;
    QStringList keys;
    for (const EditorTheme::ColorField& field : EditorTheme::colorFields()) {
        keys << field.key;
        found << hexadecimal((*theme).*field.member);
        QCOMPARE(((*theme).*field.member).alpha, 1.0);
    }
    QCOMPARE(keys, colorKeys);
    QCOMPARE(found, colors.split(u' '));
}

void EditorThemeTest::aThemeComesBackFromItsFile()
{
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        QCOMPARE(theme.encode().size(), 19);
        QVERIFY(EditorTheme::decode(toJson(theme.encode())) == theme);
    }
    // Each colour goes to the field of its own key.
    QJsonObject object = themeObject(u"Steps"_s);
    for (qsizetype i = 0; i < colorKeys.size(); ++i) {
        const double step = double(i) / 100;
        object.insert(colorKeys[i], CodableColor{step, step + 0.2, step + 0.4, step + 0.6}.encode());
    }
    const std::optional<EditorTheme> theme = EditorTheme::decode(toJson(object));
    QVERIFY(theme.has_value());
    QCOMPARE(theme->name, u"Steps"_s);
    QCOMPARE(theme->backgroundColor.red, 0.0);
    QCOMPARE(theme->gutterColor, (CodableColor{0.06, 0.06 + 0.2, 0.06 + 0.4, 0.06 + 0.6}));
    QCOMPARE(theme->attributeColor.alpha, 0.16 + 0.6);
}

void EditorThemeTest::eachFieldCountsInEqualityAndHash()
{
    const EditorTheme theme = EditorTheme::dracula();
    const EditorTheme copy = theme;
    QVERIFY(copy == theme);
    QCOMPARE(qHash(copy), qHash(theme));

    QSet<EditorTheme> variants{theme};
    EditorTheme named = theme;
    named.name = u"dracula"_s;
    EditorTheme light = theme;
    light.isDark = false;
    variants << named << light;
    for (const EditorTheme::ColorField& field : EditorTheme::colorFields()) {
        for (double CodableColor::*const channel :
             {&CodableColor::red, &CodableColor::green, &CodableColor::blue, &CodableColor::alpha}) {
            EditorTheme variant = theme;
            variant.*field.member.*channel += 0.25;
            QVERIFY(variant != theme);
            variants << variant;
        }
    }
    QCOMPARE(variants.size(), 3 + 17 * 4);
    QSet<size_t> hashes;
    for (const EditorTheme& variant : variants) {
        hashes << qHash(variant);
    }
    QCOMPARE(hashes.size(), variants.size());
}

void EditorThemeTest::aMissingKeyRejectsTheTheme_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("channel");
    QTest::newRow("name") << u"name"_s << QString();
    QTest::newRow("isDark") << u"isDark"_s << QString();
    for (const QString& key : colorKeys) {
        QTest::newRow(qPrintable(key)) << key << QString();
    }
    for (const QString& channel : channelKeys) {
        QTest::newRow(qPrintable(u"typeColor."_s + channel)) << u"typeColor"_s << channel;
    }
}

void EditorThemeTest::aMissingKeyRejectsTheTheme()
{
    QFETCH(QString, key);
    QFETCH(QString, channel);
    QJsonObject object = themeObject(u"Custom"_s);
    QVERIFY(EditorTheme::decode(toJson(object)).has_value());
    if (channel.isEmpty()) {
        object.remove(key);
    } else {
        QJsonObject color = object.value(key).toObject();
        color.remove(channel);
        object.insert(key, color);
    }
    QVERIFY(!EditorTheme::decode(toJson(object)).has_value());
}

void EditorThemeTest::aValueOfAnotherTypeRejectsTheTheme_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const QString& key, const QString& channel, const char* name, const QJsonValue& value) {
        const QString tag = channel.isEmpty() ? key : key + u'.' + channel;
        QTest::newRow(qPrintable(tag + u": "_s + QString::fromLatin1(name))) << key << channel << value;
    };
    row(u"name"_s, {}, "number", 1);
    row(u"name"_s, {}, "Boolean", true);
    row(u"name"_s, {}, "null", QJsonValue());
    row(u"isDark"_s, {}, "number 1", 1);
    row(u"isDark"_s, {}, "number 0", 0);
    row(u"isDark"_s, {}, "string", u"true"_s);
    row(u"isDark"_s, {}, "null", QJsonValue());
    row(u"textColor"_s, {}, "hexadecimal text", u"#FFFFFF"_s);
    row(u"textColor"_s, {}, "array", QJsonArray{1, 1, 1, 1});
    row(u"textColor"_s, {}, "null", QJsonValue());
    for (const QString& channel : channelKeys) {
        row(u"cursorColor"_s, channel, "Boolean", true);
        row(u"cursorColor"_s, channel, "text", u"1"_s);
        row(u"cursorColor"_s, channel, "null", QJsonValue());
        row(u"cursorColor"_s, channel, "object", QJsonObject());
    }
}

void EditorThemeTest::aValueOfAnotherTypeRejectsTheTheme()
{
    QFETCH(QString, key);
    QFETCH(QString, channel);
    QFETCH(QJsonValue, value);
    QJsonObject object = themeObject(u"Custom"_s);
    if (channel.isEmpty()) {
        object.insert(key, value);
    } else {
        QJsonObject color = object.value(key).toObject();
        color.insert(channel, value);
        object.insert(key, color);
    }
    QVERIFY(!EditorTheme::decode(toJson(object)).has_value());
}

void EditorThemeTest::numbersLoadAsTheyAre()
{
    QJsonObject object = themeObject(u"Custom"_s);
    object.insert(u"textColor"_s, QJsonObject{{u"red"_s, -3}, {u"green"_s, 1.5}, {u"blue"_s, 1}, {u"alpha"_s, 1e300}});
    const std::optional<EditorTheme> theme = EditorTheme::decode(toJson(object));
    QVERIFY(theme.has_value());
    QCOMPARE(theme->textColor, (CodableColor{-3, 1.5, 1, 1e300}));
}

void EditorThemeTest::unknownKeysAreIgnored()
{
    QJsonObject object = themeObject(u"Custom"_s);
    object.insert(u"author"_s, QJsonArray{1, u"Kim"_s});
    QJsonObject color = object.value(u"textColor"_s).toObject();
    color.insert(u"hue"_s, true);
    object.insert(u"textColor"_s, color);
    EditorTheme expected = EditorTheme::monokai();
    expected.name = u"Custom"_s;
    QVERIFY(EditorTheme::decode(toJson(object)) == expected);
    // The keys are spelt exactly.
    object = themeObject(u"Custom"_s);
    object.insert(u"isdark"_s, object.take(u"isDark"_s));
    QVERIFY(!EditorTheme::decode(toJson(object)).has_value());
}

void EditorThemeTest::textsThatAreNoObjectAreRejected_data()
{
    QTest::addColumn<QByteArray>("json");
    const QByteArray json = themeJson(u"Custom"_s);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("array") << QByteArray("[" + json + "]");
    QTest::newRow("cut off") << json.left(json.size() / 2);
    QTest::newRow("trailing comma") << QByteArray(json.left(json.lastIndexOf('}')) + ",}");
    QTest::newRow("garbage behind") << QByteArray(json + "x");
    QTest::newRow("comment") << QByteArray("// theme\n" + json);
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe{\0}\0", 6);
    QTest::newRow("invalid UTF-8 name") << QByteArray(json).replace("Custom", "C\xff");
    QTest::newRow("number without fraction") << QByteArray(json).replace("\"alpha\": 1", "\"alpha\": 1.");
}

void EditorThemeTest::textsThatAreNoObjectAreRejected()
{
    QFETCH(QByteArray, json);
    QVERIFY(!EditorTheme::decode(json).has_value());
}

void EditorThemeTest::theSampleOfTheDocumentsIsATheme()
{
    QFile sample(QStringLiteral(KELM_SAMPLE_THEME));
    QVERIFY(sample.open(QIODevice::ReadOnly));
    const std::optional<EditorTheme> theme = EditorTheme::decode(sample.readAll());
    QVERIFY(theme.has_value());
    QCOMPARE(theme->name, u"Harbour Dusk"_s);
    QVERIFY(theme->isDark);
    QVERIFY(theme->keywordColor != theme->stringColor);
}

const kelm::test::Registered<EditorThemeTest> registered;

} // namespace editor_theme_test

#include "editor_theme_test.moc"
