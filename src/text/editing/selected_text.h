// What is selected, as it stood at a moment.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QStringList>

#include <vector>

namespace kelm {

/// One or several stretches of a text. To hold it costs next to nothing, however much is selected and whatever becomes
/// of the text: the texts are made when they are asked for. An object is for one thread at a time.
class SelectedText
{
public:
    SelectedText() = default;
    /// Nothing of what lies outside the ranges is given to anybody.
    SelectedText(TextTree text, std::vector<TextRange> ranges);

    bool isEmpty() const { return ranges_.empty(); }
    /// The texts in the order of the ranges; linear in their length.
    QStringList texts() const;
    /// Lets go of the text around the stretches, for who holds it longer than the text is there.
    void letGoOfTheRest();

private:
    TextTree text_;
    std::vector<TextRange> ranges_;
};

} // namespace kelm
