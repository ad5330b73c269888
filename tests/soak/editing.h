// What an edit at the carets must come to.
#pragma once

#include "soak/world.h"

namespace kelm::soak {

/// No text is made longer than that, in units.
inline constexpr qsizetype longestText = 200000;

/// Whether there is a text to edit.
inline bool hasText(World& world)
{
    return world.editor() != nullptr;
}

/// Whether there is one that may grow.
inline bool hasRoom(World& world)
{
    return hasText(world) && world.tabs.current()->text().size() < longestText;
}

/// The editor as it was right before an edit.
struct Before
{
    /// The whole text of the document.
    QString text;
    /// The text on screen, which folds shorten.
    QString shown;
    /// The selections in the text on screen, in their order.
    std::vector<TextRange> ranges;
    bool isFolded = false;
    bool canUndo = false;
    bool canRedo = false;
};

/// Remembers what there is before an edit. In a folded text one selection alone is kept: where several would go when
/// the folds open is not foretold here.
Before beforeEdit(World& world);

/// `text` with each of `ranges` replaced: by the text of the same place in `pieces`, or by their only one.
QString replaced(const QString& text, const std::vector<TextRange>& ranges, const QStringList& pieces);

/// Tells the model that `pieces` went to the selections, and looks whether they did. In a folded text the place is not
/// foretold, but everything around what was put in has to be what it was.
void expectInserted(World& world, const Before& before, const QStringList& pieces);
/// Tells the model that these ranges were taken out, and looks whether they were.
void expectErased(World& world, const Before& before, const std::vector<TextRange>& ranges);
/// As above for what goes as far as a word does: the text has to be what it was but for what is missing at the carets.
void expectErasedSomewhere(World& world, const Before& before);
/// The document's content, which must be `text`, is an edit that can be undone.
void expectEdited(World& world, const Before& before, const QString& text);
void expectUndone(World& world, const Before& before);
void expectRedone(World& world, const Before& before);

} // namespace kelm::soak
