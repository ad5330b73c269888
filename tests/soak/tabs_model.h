// Which tabs must be open.
#pragma once

#include "soak/shadow_document.h"

#include <QList>

#include <algorithm>

namespace kelm::soak {

/// The open documents in the order of their tabs, and which of them is seen.
class TabsModel
{
public:
    QList<ShadowDocument>& all() { return tabs_; }
    const QList<ShadowDocument>& all() const { return tabs_; }
    qsizetype currentIndex() const { return current_; }
    /// Null when no document is seen.
    ShadowDocument* current() { return current_ < tabs_.size() ? &tabs_[current_] : nullptr; }

    std::optional<qsizetype> indexOf(const QUrl& url) const
    {
        const auto found =
            std::find_if(tabs_.begin(), tabs_.end(), [&url](const ShadowDocument& tab) { return tab.url == url; });
        return found != tabs_.end() ? std::optional<qsizetype>(found - tabs_.begin()) : std::nullopt;
    }

    void open(ShadowDocument document)
    {
        tabs_.append(std::move(document));
        current_ = tabs_.size() - 1;
    }
    void select(qsizetype index) { current_ = index; }
    /// The index stays where it is unless it falls off the end.
    void close(qsizetype index)
    {
        tabs_.removeAt(index);
        current_ = std::clamp<qsizetype>(current_, 0, std::max<qsizetype>(tabs_.size() - 1, 0));
    }
    void closeOthers(qsizetype index)
    {
        tabs_ = {tabs_.at(index)};
        current_ = 0;
    }
    void closeAll()
    {
        tabs_.clear();
        current_ = 0;
    }

private:
    QList<ShadowDocument> tabs_;
    qsizetype current_ = 0;
};

} // namespace kelm::soak
