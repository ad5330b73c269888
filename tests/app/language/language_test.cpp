#include "app/language/language.h"
#include "support/test_program.h"

#include <QFile>
#include <QtTest>

namespace language_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Expected
{
    Language::Case language;
    const char* rawValue;
    const char* fileExtension;
    const char* extensions;
    const char* icon;
};

constexpr Expected table[] = {
    {Language::plainText, "Plain Text", "txt", "txt", "doc"},
    {Language::swift, "Swift", "swift", "swift", "swift"},
    {Language::python, "Python", "py", "py pyw python", "chevron.left.forwardslash.chevron.right"},
    {Language::javascript, "JavaScript", "js", "js mjs cjs javascript", "curlybraces"},
    {Language::typescript, "TypeScript", "ts", "ts tsx typescript", "curlybraces"},
    {Language::json, "JSON", "json", "json", "doc.text"},
    {Language::xml, "XML", "xml", "xml plist", "chevron.left.forwardslash.chevron.right"},
    {Language::html, "HTML", "html", "html htm", "chevron.left.forwardslash.chevron.right"},
    {Language::css, "CSS", "css", "css scss sass", "paintbrush"},
    {Language::markdown, "Markdown", "md", "md markdown", "doc.richtext"},
    {Language::yaml, "YAML", "yml", "yml yaml", "doc"},
    {Language::go, "Go", "go", "go golang", "doc"},
    {Language::rust, "Rust", "rs", "rs rust", "doc"},
    {Language::c, "C", "c", "c h", "doc"},
    {Language::cpp, "C++", "cpp", "cpp cc cxx hpp", "doc"},
    {Language::java, "Java", "java", "java", "doc"},
    {Language::shell, "Shell", "sh", "sh bash zsh shell", "terminal"},
    {Language::ruby, "Ruby", "rb", "rb ruby", "doc"},
    {Language::php, "PHP", "php", "php", "doc"},
    {Language::sql, "SQL", "sql", "sql", "doc"},
};

} // namespace

class LanguageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allCasesStandInTheirOrder();
    void eachLanguageHasItsNames_data();
    void eachLanguageHasItsNames();
    void anExtensionInAnyCaseGivesItsLanguage_data();
    void anExtensionInAnyCaseGivesItsLanguage();
    void rawValuesAreExact();
    void aLanguageIsAKey();
};

void LanguageTest::allCasesStandInTheirOrder()
{
    QCOMPARE(Language::allCases().size(), std::size(table));
    for (std::size_t i = 0; i < std::size(table); ++i) {
        QCOMPARE(Language::allCases()[i], Language(table[i].language));
        QCOMPARE(int(table[i].language), int(i));
    }
    QCOMPARE(Language(), Language(Language::plainText));
}

void LanguageTest::eachLanguageHasItsNames_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < int(std::size(table)); ++row) {
        QTest::newRow(table[row].rawValue) << row;
    }
}

void LanguageTest::eachLanguageHasItsNames()
{
    QFETCH(int, row);
    const Expected& expected = table[row];
    const Language language = expected.language;
    QCOMPARE(language.rawValue(), QString::fromLatin1(expected.rawValue));
    QCOMPARE(language.fileExtension(), QString::fromLatin1(expected.fileExtension));
    QCOMPARE(language.iconName(), QString::fromLatin1(expected.icon));
    QVERIFY(Language::fromRawValue(language.rawValue()) == language);
    QCOMPARE(Language::from(language.fileExtension()), language);
    for (const QString& extension : QString::fromLatin1(expected.extensions).split(u' ')) {
        QCOMPARE(Language::from(extension), language);
        QCOMPARE(Language::from(extension.toUpper()), language);
    }
}

void LanguageTest::anExtensionInAnyCaseGivesItsLanguage_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<int>("language");
    const auto row = [](const char* extension, Language::Case language) {
        QTest::newRow(*extension ? extension : "empty") << QString::fromUtf8(extension) << int(language);
    };
    row("PY", Language::python);
    row("Py", Language::python);
    row("Shell", Language::shell);
    row("golang", Language::go);
    row("H", Language::c);
    row("hpp", Language::cpp);
    row("plist", Language::xml);
    row("", Language::plainText);
    row("jsx", Language::plainText);
    row(".py", Language::plainText);
    row("py ", Language::plainText);
    row("c++", Language::plainText);
    row("Plain Text", Language::plainText);
    row("파이썬", Language::plainText);
    row("hxx", Language::plainText);
    row("pyＷ", Language::plainText);
}

void LanguageTest::anExtensionInAnyCaseGivesItsLanguage()
{
    QFETCH(QString, extension);
    QFETCH(int, language);
    QCOMPARE(int(Language::from(extension)), language);
}

void LanguageTest::rawValuesAreExact()
{
    QVERIFY(Language::fromRawValue(u"C++") == Language(Language::cpp));
    QVERIFY(!Language::fromRawValue(u"cpp"));
    QVERIFY(!Language::fromRawValue(u"python"));
    QVERIFY(!Language::fromRawValue(u"Swift "));
    QVERIFY(!Language::fromRawValue(u""));
}

void LanguageTest::aLanguageIsAKey()
{
    QHash<Language, int> counts;
    for (const Language language : Language::allCases()) {
        ++counts[language];
    }
    QCOMPARE(counts.size(), 20);
    QCOMPARE(counts.value(Language::sql), 1);
}

const kelm::test::Registered<LanguageTest> registered;

} // namespace language_test

#include "language_test.moc"
