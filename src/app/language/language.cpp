#include "app/language/language.h"

#include <QLatin1String>

#include <algorithm>

namespace kelm {

namespace {

struct LanguageRow
{
    Language::Case language;
    QLatin1String rawValue;
    QLatin1String fileExtension;
    QLatin1String iconName;
};

constexpr QLatin1String codeIcon("chevron.left.forwardslash.chevron.right");
constexpr QLatin1String bracesIcon("curlybraces");
constexpr QLatin1String plainIcon("doc");

/// One row a language, in the order of the enumeration.
constexpr LanguageRow languageRows[] = {
    {Language::plainText, QLatin1String("Plain Text"), QLatin1String("txt"), plainIcon},
    {Language::swift, QLatin1String("Swift"), QLatin1String("swift"), QLatin1String("swift")},
    {Language::python, QLatin1String("Python"), QLatin1String("py"), codeIcon},
    {Language::javascript, QLatin1String("JavaScript"), QLatin1String("js"), bracesIcon},
    {Language::typescript, QLatin1String("TypeScript"), QLatin1String("ts"), bracesIcon},
    {Language::json, QLatin1String("JSON"), QLatin1String("json"), QLatin1String("doc.text")},
    {Language::xml, QLatin1String("XML"), QLatin1String("xml"), codeIcon},
    {Language::html, QLatin1String("HTML"), QLatin1String("html"), codeIcon},
    {Language::css, QLatin1String("CSS"), QLatin1String("css"), QLatin1String("paintbrush")},
    {Language::markdown, QLatin1String("Markdown"), QLatin1String("md"), QLatin1String("doc.richtext")},
    {Language::yaml, QLatin1String("YAML"), QLatin1String("yml"), plainIcon},
    {Language::go, QLatin1String("Go"), QLatin1String("go"), plainIcon},
    {Language::rust, QLatin1String("Rust"), QLatin1String("rs"), plainIcon},
    {Language::c, QLatin1String("C"), QLatin1String("c"), plainIcon},
    {Language::cpp, QLatin1String("C++"), QLatin1String("cpp"), plainIcon},
    {Language::java, QLatin1String("Java"), QLatin1String("java"), plainIcon},
    {Language::shell, QLatin1String("Shell"), QLatin1String("sh"), QLatin1String("terminal")},
    {Language::ruby, QLatin1String("Ruby"), QLatin1String("rb"), plainIcon},
    {Language::php, QLatin1String("PHP"), QLatin1String("php"), plainIcon},
    {Language::sql, QLatin1String("SQL"), QLatin1String("sql"), plainIcon},
};

struct ExtensionRow
{
    QLatin1String extension;
    Language::Case language;
};

/// The file extensions and the language words of lesson links, which share one table.
constexpr ExtensionRow extensionRows[] = {
    {QLatin1String("swift"), Language::swift},
    {QLatin1String("py"), Language::python},
    {QLatin1String("pyw"), Language::python},
    {QLatin1String("python"), Language::python},
    {QLatin1String("js"), Language::javascript},
    {QLatin1String("mjs"), Language::javascript},
    {QLatin1String("cjs"), Language::javascript},
    {QLatin1String("javascript"), Language::javascript},
    {QLatin1String("ts"), Language::typescript},
    {QLatin1String("tsx"), Language::typescript},
    {QLatin1String("typescript"), Language::typescript},
    {QLatin1String("json"), Language::json},
    {QLatin1String("xml"), Language::xml},
    {QLatin1String("plist"), Language::xml},
    {QLatin1String("html"), Language::html},
    {QLatin1String("htm"), Language::html},
    {QLatin1String("css"), Language::css},
    {QLatin1String("scss"), Language::css},
    {QLatin1String("sass"), Language::css},
    {QLatin1String("md"), Language::markdown},
    {QLatin1String("markdown"), Language::markdown},
    {QLatin1String("yml"), Language::yaml},
    {QLatin1String("yaml"), Language::yaml},
    {QLatin1String("go"), Language::go},
    {QLatin1String("golang"), Language::go},
    {QLatin1String("rs"), Language::rust},
    {QLatin1String("rust"), Language::rust},
    {QLatin1String("c"), Language::c},
    {QLatin1String("h"), Language::c},
    {QLatin1String("cpp"), Language::cpp},
    {QLatin1String("cc"), Language::cpp},
    {QLatin1String("cxx"), Language::cpp},
    {QLatin1String("hpp"), Language::cpp},
    {QLatin1String("java"), Language::java},
    {QLatin1String("sh"), Language::shell},
    {QLatin1String("bash"), Language::shell},
    {QLatin1String("zsh"), Language::shell},
    {QLatin1String("shell"), Language::shell},
    {QLatin1String("rb"), Language::ruby},
    {QLatin1String("ruby"), Language::ruby},
    {QLatin1String("php"), Language::php},
    {QLatin1String("sql"), Language::sql},
};

const LanguageRow& rowOf(Language language)
{
    return languageRows[language];
}

} // namespace

Language Language::from(QStringView extension)
{
    const QString lowered = extension.toString().toLower();
    const auto* row = std::find_if(std::begin(extensionRows), std::end(extensionRows),
                                   [&lowered](const ExtensionRow& each) { return each.extension == lowered; });
    return row == std::end(extensionRows) ? plainText : row->language;
}

std::optional<Language> Language::fromRawValue(QStringView rawValue)
{
    for (const LanguageRow& row : languageRows) {
        if (row.rawValue == rawValue) {
            return row.language;
        }
    }
    return std::nullopt;
}

const std::array<Language, 20>& Language::allCases()
{
    static const auto cases = [] {
        std::array<Language, std::size(languageRows)> all;
        std::transform(std::begin(languageRows), std::end(languageRows), all.begin(),
                       [](const LanguageRow& row) { return row.language; });
        return all;
    }();
    return cases;
}

QString Language::rawValue() const
{
    return rowOf(*this).rawValue;
}

QString Language::fileExtension() const
{
    return rowOf(*this).fileExtension;
}

QString Language::iconName() const
{
    return rowOf(*this).iconName;
}

} // namespace kelm
