// What a completion list offers.
#pragma once

#include "platform/desktop/named_colors.h"

#include <QString>
#include <QUuid>

#include <optional>

namespace kelm {

/// What kind of word an entry is. The tables give keywords and snippets; the others have their badges ready.
enum class CompletionType { keyword, function, variable, type, snippet, property, method };

/// The mark in front of an entry.
struct CompletionBadge
{
    QString letter;
    SystemColor color;

    friend bool operator==(const CompletionBadge&, const CompletionBadge&) = default;
};

CompletionBadge badgeOf(CompletionType type);

/// One entry of the list.
struct CompletionItem
{
    /// Its own for each item that is made.
    QUuid id;
    /// What is shown and matched.
    QString text;
    CompletionType type = CompletionType::keyword;
    /// What stands in the grey column.
    QString detail;
    /// What is put in, a snippet's body with its placeholders; `text` itself where absent.
    std::optional<QString> insertText;

    friend bool operator==(const CompletionItem&, const CompletionItem&) = default;
};

} // namespace kelm
