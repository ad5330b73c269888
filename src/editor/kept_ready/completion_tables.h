// The words and snippets that completion knows.
#pragma once

#include "app/language/language.h"

#include <QLatin1String>

#include <span>

namespace kelm {

/// A snippet: its trigger, and its body with placeholders. "${2:name}" is a placeholder with its default text, "${0}"
/// stands for the caret's final place.
struct Snippet
{
    QLatin1String trigger;
    QLatin1String body;
};

/// The keywords of a language in their order; empty for the languages that have no list.
std::span<const QLatin1String> completionKeywords(Language language);

/// The snippets, the same for all languages.
std::span<const Snippet> completionSnippets();

} // namespace kelm
