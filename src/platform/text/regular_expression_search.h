// One search for the matches of a regular expression.
#pragma once

#include "platform/text/pieced_text.h"
#include "platform/text/regular_expression.h"

#include <QStringView>

#include <functional>
#include <memory>

namespace kelm {

/// Gives the matches of a text one after the other, when they are asked for. It may go from thread to thread between
/// two calls.
class RegularExpressionSearch
{
public:
    /// Looks at a text where it stands, which must outlive the search, from the offset `from` on.
    RegularExpressionSearch(const RegularExpression& expression, QStringView text, qsizetype from = 0);
    /// The same in a text in pieces; takes two or three times as long where it is longer than a window of it. `from`
    /// must not part a pair of surrogates.
    RegularExpressionSearch(const RegularExpression& expression, PiecedText text, qsizetype from = 0);
    ~RegularExpressionSearch();
    RegularExpressionSearch(const RegularExpressionSearch&) = delete;
    RegularExpressionSearch& operator=(const RegularExpressionSearch&) = delete;

    /// Ends the search, as one that the receiver has had enough of, when the call returns true. It is told the work
    /// since it was last asked, in places at which a match was tried for or, where one place takes long, in what comes
    /// to as many or twice as many, and how far the search has come. What passes over places that no match can begin at
    /// does not ask.
    void setInterruption(std::function<bool(int work, qsizetype reached)> isEnough);
    /// Lets the effort be that of the expression for each stretch of this many units, of which the search has reached
    /// one, rather than for the whole text.
    void renewEffortEach(qsizetype units);

    /// The next match, which holds until the next call; null when there is none or the search has ended otherwise.
    const RegularExpressionMatch* next();
    /// Why there was no next match.
    RegularExpression::Ending ending() const;
    /// Where the search stands: no match begins before this offset that has not been given.
    qsizetype reached() const;

private:
    struct State;
    void begin(const RegularExpression& expression, qsizetype from);

    std::unique_ptr<State> state_;
};

} // namespace kelm
