#include "app/language/language.h"

#include <algorithm>

namespace kelm {

namespace {

const LanguageRow& rowOf(Language language)
{
    return languages::table[language];
}

bool hasWord(const LanguageRow& row, const QString& word)
{
    return std::any_of(row.words.begin(), row.words.end(),
                       [&word](const char* each) { return each != nullptr && word == QLatin1String(each); });
}

} // namespace

Language Language::from(QStringView extension)
{
    const QString lowered = extension.toString().toLower();
    const auto* row = std::find_if(std::begin(languages::table), std::end(languages::table),
                                   [&lowered](const LanguageRow& each) { return hasWord(each, lowered); });
    return row == std::end(languages::table) ? plainText : row->language;
}

std::optional<Language> Language::fromRawValue(QStringView rawValue)
{
    for (const LanguageRow& row : languages::table) {
        if (QLatin1String(row.rawValue) == rawValue) {
            return row.language;
        }
    }
    return std::nullopt;
}

const std::array<Language, Language::count>& Language::allCases()
{
    static const auto cases = [] {
        std::array<Language, count> all;
        std::transform(std::begin(languages::table), std::end(languages::table), all.begin(),
                       [](const LanguageRow& row) { return row.language; });
        return all;
    }();
    return cases;
}

QString Language::rawValue() const
{
    return QLatin1String(rowOf(*this).rawValue);
}

QString Language::fileExtension() const
{
    return QLatin1String(rowOf(*this).fileExtension);
}

QString Language::iconName() const
{
    return QLatin1String(rowOf(*this).iconName);
}

CodeFolding Language::folding() const
{
    return rowOf(*this).folding;
}

bool Language::runsWithoutFile() const
{
    return rowOf(*this).runsWithoutFile;
}

} // namespace kelm
