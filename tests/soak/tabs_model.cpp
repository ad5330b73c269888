#include "soak/tabs_model.h"

namespace kelm::soak {

namespace {

/// More are not offered at once.
constexpr qsizetype mostClosed = 10;

} // namespace

void TabsModel::noteClosed(const std::function<bool(qsizetype)>& isClosed)
{
    Closed closed;
    for (qsizetype index = 0; index < tabs_.size(); ++index) {
        const ShadowDocument& tab = tabs_[index];
        closed.order.append(tab.id());
        if (isClosed(index) && tab.isUnsaved()) {
            closedTexts_.append(tab.text());
        }
        if (isClosed(index) && tab.isModified && (tab.url || !tab.text().isEmpty())) {
            closed.documents.append(tab);
            closed.seen = index == current_ || closed.documents.size() == 1 ? tab.id() : closed.seen;
        }
    }
    if (!closed.documents.isEmpty()) {
        closed_.append(closed);
        closed_ = closed_.last(std::min(closed_.size(), mostClosed));
    }
}

void TabsModel::reopen()
{
    const Closed closed = closed_.takeLast();
    for (const ShadowDocument& document : closed.documents) {
        if (document.isUnsaved()) {
            closedTexts_.removeOne(document.text());
        }
        put(document.reopened(), closed.order);
    }
    current_ = placeOf(closed.seen);
}

void TabsModel::put(ShadowDocument document, const QList<quint64>& order)
{
    if (const auto same = document.url ? indexOf(*document.url) : std::nullopt) {
        if (!tabs_[*same].isModified) {
            tabs_[*same] = std::move(document);
            return;
        }
        document.url = std::nullopt;
    }
    const qsizetype former = order.indexOf(document.id());
    qsizetype place = tabs_.size();
    for (qsizetype behind = order.size() - 1; behind > former; --behind) {
        place = placeOf(order[behind]) >= 0 ? placeOf(order[behind]) : place;
    }
    for (qsizetype before = 0; before < former; ++before) {
        place = placeOf(order[before]) >= 0 ? placeOf(order[before]) + 1 : place;
    }
    tabs_.insert(place, std::move(document));
}

qsizetype TabsModel::placeOf(quint64 id) const
{
    const auto found = std::find_if(tabs_.begin(), tabs_.end(), [id](const auto& tab) { return tab.id() == id; });
    return found != tabs_.end() ? found - tabs_.begin() : -1;
}

QStringList TabsModel::unsavedTexts() const
{
    QStringList texts = closedTexts_;
    for (const ShadowDocument& tab : tabs_) {
        if (tab.isUnsaved()) {
            texts.append(tab.text());
        }
    }
    return texts;
}

} // namespace kelm::soak
