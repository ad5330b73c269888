#include "text/view/searched_text.h"

#include "text/view/text_view.h"

namespace kelm {

SearchedText::SearchedText(TextView& view) : view_(view), whole_(view.wholeText())
{
    if (!whole_) {
        return;
    }
    follow();
    connect(whole_.data(), &WholeText::willShorten, this, [this] {
        behind_.setText(view_.storage().snapshot());
        isBehind_ = true;
        Q_EMIT moved();
    });
    connect(whole_.data(), &WholeText::becameWhole, this, [this] {
        isBehind_ = false;
        Q_EMIT moved();
        // Nobody follows it any more.
        behind_.setText(TextTree());
    });
    connect(whole_.data(), &WholeText::replaced, this, [this] {
        follow();
        Q_EMIT replaced();
    });
}

void SearchedText::follow()
{
    isBehind_ = whole_->isShortened();
    behind_.setText(isBehind_ ? whole_->text() : TextTree());
}

TextStorage& SearchedText::storage()
{
    return isBehind_ ? behind_ : view_.storage();
}

bool SearchedText::isShortened() const
{
    return whole_ && whole_->isShortened();
}

TextRange SearchedText::selectedRange() const
{
    return isShortened() ? whole_->whole(view_.selectedRange()) : view_.selectedRange();
}

TextRange SearchedText::shown(TextRange range) const
{
    return isShortened() ? whole_->shown(range) : range;
}

void SearchedText::reveal(TextRange range)
{
    if (isShortened()) {
        whole_->reveal(range);
    }
}

std::vector<SearchedText::ShownMatch> SearchedText::matchesIn(FindSession& session, TextRange shownRange) const
{
    const bool shortened = isShortened();
    session.setShown(shortened ? whole_->whole(shownRange) : shownRange);
    std::vector<ShownMatch> matches;
    for (const TextRange part : shortened ? whole_->plainParts(shownRange) : std::vector{shownRange}) {
        for (const TextRange match : session.matchesIn(shortened ? whole_->whole(part) : part)) {
            // One that goes on behind what is hidden meets the part before it and the part behind it.
            if (matches.empty() || matches.back().match != match) {
                matches.push_back({match, shown(match)});
            }
        }
    }
    return matches;
}

} // namespace kelm
