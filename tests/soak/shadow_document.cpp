#include "soak/shadow_document.h"

namespace kelm::soak {

namespace {

/// How many texts are kept for undo.
constexpr qsizetype mostStates = 400;

quint64 nextId()
{
    static quint64 last = 0;
    return ++last;
}

} // namespace

ShadowDocument::ShadowDocument(QString text, std::optional<QUrl> place)
    : url(std::move(place)), fileText(text), id_(nextId()), states_{std::move(text)}, places_{0}
{}

void ShadowDocument::saved()
{
    isModified = false;
    fileText = text();
}

ShadowDocument ShadowDocument::reopened() const
{
    ShadowDocument same = *this;
    same.states_ = {text()};
    same.places_ = {0};
    same.isTrimmed_ = false;
    return same;
}

void ShadowDocument::edited(const QString& text)
{
    const qsizetype last = *places_.rbegin();
    states_.resize(last + 1);
    states_.append(text);
    if (states_.size() > mostStates) {
        states_.removeFirst();
        isTrimmed_ = true;
    }
    places_ = {states_.size() - 1};
    isModified = true;
}

bool ShadowDocument::moved(const QString& text, bool ahead)
{
    isModified = true;
    std::set<qsizetype> reached;
    for (qsizetype state = 0; state < states_.size(); ++state) {
        const bool lies = ahead ? state > *places_.begin() : state < *places_.rbegin();
        if (lies && states_[state] == text) {
            reached.insert(state);
        }
    }
    if (reached.empty() && isTrimmed_ && !ahead) {
        states_.prepend(text);
        reached.insert(0);
    }
    if (reached.empty()) {
        return false;
    }
    places_ = reached;
    return true;
}

} // namespace kelm::soak
