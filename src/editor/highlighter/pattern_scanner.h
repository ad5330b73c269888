// The faster engine behind the highlighter's patterns.
#pragma once

#include "editor/highlighter/data_scanners.h"
#include "editor/highlighter/markdown_scanners.h"
#include "editor/highlighter/span_scanners.h"
#include "editor/highlighter/word_scanners.h"
#include "platform/text/regular_expression.h"

#include <QStringView>

#include <optional>
#include <variant>

namespace kelm {

/// A scanner that finds exactly the matches that ICU finds for one pattern: many times faster, and in linear time where
/// ICU looks at the same unit again and again.
using PatternScanner = std::variant<
    scanners::ToLineEnd, scanners::Enclosed, scanners::EscapedString, scanners::MarkedSpan, scanners::BracedVariable,
    scanners::Literal, scanners::WordList, scanners::Number, scanners::CalledName, scanners::IntroducedName,
    scanners::SignedName, scanners::MacroName, scanners::JsonKey, scanners::JsonStringValue, scanners::JsonNumberValue,
    scanners::JsonLiteralValue, scanners::TagName, scanners::TagEnd, scanners::AttributeName, scanners::SelectorName,
    scanners::PropertyName, scanners::PropertyValue, scanners::Measure, scanners::HexColor, scanners::Heading,
    scanners::ListMarker<scanners::Bullet>, scanners::ListMarker<scanners::Ordinal>, scanners::Link>;

/// The scanner for a pattern under just these options; absent for a pattern that has none and is left to ICU. It keeps
/// views into `pattern` and must not outlive it.
std::optional<PatternScanner> scannerFor(QStringView pattern, RegularExpression::Options options);

/// Calls `found(start, end)` for each match in order.
template <class Found>
void scanMatches(const PatternScanner& scanner, const ScannedText& text, Found found)
{
    std::visit([&](const auto& pattern) { pattern.scan(text, found); }, scanner);
}

} // namespace kelm
