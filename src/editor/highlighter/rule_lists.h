// The rules of the highlighter, as data.
#pragma once

#include "app/language/language.h"
#include "editor/highlighter/highlight_rule.h"
#include "editor/themes/editor_theme.h"

#include <QString>
#include <QStringView>

#include <span>
#include <vector>

namespace kelm {

/// What a rule is before a theme is known: a pattern, or the words of which one is built, and the slot of the colour.
struct RuleEntry
{
    using ColorSlot = CodableColor EditorTheme::*;

    constexpr RuleEntry(const char16_t* text, ColorSlot slot,
                        RegularExpression::Option matching = RegularExpression::none)
        : pattern(text), color(slot), options(matching)
    {}
    template <std::size_t count>
    constexpr RuleEntry(const QStringView (&list)[count], ColorSlot slot) : words(list), color(slot)
    {}

    /// The pattern itself, or for a word list `\b(one|two|three)\b` in the list's order with the words as they stand.
    QString patternText() const;

    QStringView pattern;
    std::span<const QStringView> words;
    ColorSlot color;
    RegularExpression::Option options = RegularExpression::none;
};

/// The rules of one family of languages. They are applied in this order, and a later rule paints over an earlier one:
/// the order is part of the look.
using RuleList = std::span<const RuleEntry>;

namespace rules {
extern const RuleList swift;
extern const RuleList python;
extern const RuleList javaScript;
extern const RuleList json;
extern const RuleList xml;
extern const RuleList css;
extern const RuleList markdown;
extern const RuleList shell;
extern const RuleList go;
extern const RuleList rust;
extern const RuleList generic;

/// The rules of a language: those of its family, or the generic ones.
RuleList of(Language language);
} // namespace rules

/// The rules with the colours of a theme.
std::vector<HighlightRule> makeRules(RuleList list, const EditorTheme& theme);

} // namespace kelm
