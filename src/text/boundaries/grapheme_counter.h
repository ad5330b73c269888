// How many characters a growing text has.
#pragma once

#include <QStringView>

#include <vector>

namespace kelm {

/// Counts the user-perceived characters (extended grapheme clusters) of a text that mostly grows at its end: each count
/// looks at what has come since the one before, and after an edit further up, at what stands behind the edit.
class GraphemeCounter
{
public:
    /// The number of characters of `text`, which is the text of the last count but for the edits told since.
    qsizetype count(QStringView text);

    /// The text from `offset` on, in UTF-16 units, is not what it was at the last count. What only comes behind the
    /// old end need not be told.
    void textReplaced(qsizetype offset);

private:
    /// A boundary between characters, and how many characters stand before it.
    struct Boundary
    {
        qsizetype offset = 0;
        qsizetype count = 0;
    };

    // Boundaries in their order, some way apart, the first at the top of the text. Behind them the start of the last
    // character of the last count, which what comes next may go on.
    std::vector<Boundary> kept_{Boundary()};
    Boundary last_;
};

} // namespace kelm
