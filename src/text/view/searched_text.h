// The text that a find bar looks in.
#pragma once

#include "text/editing/whole_text.h"
#include "text/find/find_session.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QPointer>

#include <vector>

namespace kelm {

class TextView;

/// The whole text behind a view, of which some may be shown in short: that of the view itself while nothing is, else
/// one beside it. Places are told in the whole text unless they are said to be shown ones. Main thread only.
class SearchedText final : public QObject
{
    Q_OBJECT

public:
    /// The view has its whole text, if it has one, from before, and outlives this.
    explicit SearchedText(TextView& view);

    TextStorage& storage();
    /// The selected range.
    TextRange selectedRange() const;
    TextRange shown(TextRange range) const;
    /// Shows in full what hides a range.
    void reveal(TextRange range);
    /// Where a search has matches in a shown range, as shown ranges, and which part of the text that is. What is hidden
    /// is not looked at.
    struct ShownMatch
    {
        TextRange match;
        TextRange shown;
    };
    std::vector<ShownMatch> matchesIn(FindSession& session, TextRange shown) const;

Q_SIGNALS:
    /// The same text stands in another storage now.
    void moved();
    /// Another text stands there.
    void replaced();

private:
    bool isShortened() const;
    void follow();

    TextView& view_;
    QPointer<WholeText> whole_;
    /// The whole text while it is shown in short.
    TextStorage behind_;
    bool isBehind_ = false;
};

} // namespace kelm
