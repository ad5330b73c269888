// Which tabs must be open.
#pragma once

#include "soak/shadow_document.h"

#include <QList>

#include <algorithm>
#include <functional>

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
        noteClosed([index](qsizetype each) { return each == index; });
        tabs_.removeAt(index);
        current_ = std::clamp<qsizetype>(current_, 0, std::max<qsizetype>(tabs_.size() - 1, 0));
    }
    void closeOthers(qsizetype index)
    {
        noteClosed([index](qsizetype each) { return each != index; });
        tabs_ = {tabs_.at(index)};
        current_ = 0;
    }
    void closeAll()
    {
        noteClosed([](qsizetype) { return true; });
        tabs_.clear();
        current_ = 0;
    }

    /// What is offered to be opened again: what was closed at once, the latest last.
    bool canReopen() const { return !closed_.isEmpty(); }
    /// The latest of it is open again.
    void reopen();
    /// The texts that are in no file, those of closed tabs too.
    QStringList unsavedTexts() const;
    /// What was closed is neither offered nor in the store any more.
    void forgetClosed()
    {
        closed_.clear();
        closedTexts_.clear();
    }

private:
    struct Closed
    {
        QList<ShadowDocument> documents;
        /// All tabs as they stood.
        QList<quint64> order;
        /// Which of them is seen when they are open again: the one that was, or the first.
        quint64 seen = 0;
    };

    void noteClosed(const std::function<bool(qsizetype)>& isClosed);
    void put(ShadowDocument document, const QList<quint64>& order);
    qsizetype placeOf(quint64 id) const;

    QList<ShadowDocument> tabs_;
    qsizetype current_ = 0;
    QList<Closed> closed_;
    QStringList closedTexts_;
};

} // namespace kelm::soak
