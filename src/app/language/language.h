// The closed set of text kinds that the editor knows.
#pragma once

#include <QHash>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace kelm {

/// One kind of text: the key by which the highlighter, folding, completion and the runner choose their tables. A plain
/// value that works in a `switch`; starts as `plainText`.
class Language
{
public:
    enum Case : quint8 {
        plainText,
        swift,
        python,
        javascript,
        typescript,
        json,
        xml,
        html,
        css,
        markdown,
        yaml,
        go,
        rust,
        c,
        cpp,
        java,
        shell,
        ruby,
        php,
        sql,
    };

    constexpr Language() = default;
    constexpr Language(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    /// The language of a file extension without its dot, or of a language word such as "golang", in any letter case.
    /// Total: whatever is not known, the empty text included, is `plainText`.
    static Language from(QStringView extension);

    /// The language whose display name is `rawValue`, exactly.
    static std::optional<Language> fromRawValue(QStringView rawValue);

    /// All languages in the order in which menus list them.
    static const std::array<Language, 20>& allCases();

    /// The display name, such as "C++".
    QString rawValue() const;

    /// The extension, without a dot, of a temporary or suggested file of this language.
    QString fileExtension() const;

    /// The name of the symbol that stands for this language in the status bar.
    QString iconName() const;

    friend constexpr bool operator==(Language a, Language b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(Language a, Case b) { return a.value_ == b; }
    friend size_t qHash(Language language, size_t seed = 0) noexcept { return ::qHash(int(language.value_), seed); }

private:
    Case value_ = plainText;
};

} // namespace kelm
