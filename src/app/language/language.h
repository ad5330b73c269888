// The closed set of text kinds that the editor knows.
#pragma once

#include "app/language/language_table.h"

#include <QHash>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace kelm {

/// One kind of text: the key by which the highlighter, folding, completion and the runner choose their tables. A plain
/// value that works in a `switch`; starts as `plainText`.
class Language : public LanguageCases
{
public:
    static constexpr std::size_t count = std::size(languages::table);

    constexpr Language() = default;
    constexpr Language(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    /// The language of a file extension without its dot, or of a language word such as "golang", in any letter case.
    /// Total: whatever is not known, the empty text included, is `plainText`.
    static Language from(QStringView extension);

    /// The language whose display name is `rawValue`, exactly.
    static std::optional<Language> fromRawValue(QStringView rawValue);

    /// All languages in the order in which menus list them.
    static const std::array<Language, count>& allCases();

    /// The display name, such as "C++".
    QString rawValue() const;

    /// The extension, without a dot, of a temporary or suggested file of this language.
    QString fileExtension() const;

    /// The name of the symbol that stands for this language in the status bar.
    QString iconName() const;

    /// By what its foldable regions are found.
    CodeFolding folding() const;

    /// Whether a text in it runs without a file of its own.
    bool runsWithoutFile() const;

    friend constexpr bool operator==(Language a, Language b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(Language a, Case b) { return a.value_ == b; }
    friend size_t qHash(Language language, size_t seed = 0) noexcept { return ::qHash(int(language.value_), seed); }

private:
    Case value_ = plainText;
};

} // namespace kelm
