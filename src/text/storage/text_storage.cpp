#include "text/storage/text_storage.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// A text up to this length that is put in takes the colour before it until its own is found; what is longer would show
/// as a block of one colour.
constexpr qsizetype mostCarriedUnits = 1024;

} // namespace

TextStorage::TextStorage(QObject* parent) : QObject(parent) {}

TextRange TextStorage::lineRange(TextRange range) const
{
    const TextRange wanted = range.clampedTo(length());
    const qsizetype start = lines_.start(lines_.lineAt(wanted.location));
    const qsizetype last = wanted.isEmpty() ? wanted.location : wanted.end() - 1;
    return TextRange::between(start, lines_.end(lines_.lineAt(last)));
}

void TextStorage::beginEditing()
{
    ++depth_;
}

void TextStorage::endEditing()
{
    if (--depth_ > 0) {
        return;
    }
    // A receiver may edit in turn; what it does then has signals of its own.
    const auto edit = std::exchange(pendingEdit_, {});
    const auto colors = std::exchange(pendingColors_, {});
    if (edit) {
        Q_EMIT edited(*edit);
    }
    if (colors && !colors->isEmpty()) {
        Q_EMIT attributesChanged(*colors);
    }
}

void TextStorage::replace(TextRange range, const TextTree& replacement)
{
    const TextRange wanted = range.clampedTo(length());
    if (wanted.isEmpty() && replacement.isEmpty()) {
        return;
    }
    const EditingBracket bracket(*this);
    Q_EMIT willReplace(wanted, replacement);
    const TextTree before = tree_;
    tree_.replace(wanted, replacement);
    ++revision_;
    lines_.forget();
    const TextEdit edit = editBetween(before, tree_, wanted);
    foreground_.textReplaced(wanted, replacement.length());
    if (colorSource_ != nullptr && (replacement.length() > mostCarriedUnits || wanted.length == before.length())) {
        foreground_.set({wanted.location, replacement.length()}, ColorRuns::pending);
    }
    background_.textReplaced(wanted, replacement.length());
    pendingEdit_ = pendingEdit_ ? pendingEdit_->followedBy(edit) : edit;
    if (pendingColors_) {
        const qsizetype start = edit.moved(pendingColors_->location);
        pendingColors_ = TextRange::between(start, std::max(start, edit.moved(pendingColors_->end())));
    }
}

void TextStorage::setText(const TextTree& text)
{
    const EditingBracket bracket(*this);
    Q_EMIT willReset();
    TextEdit edit{{0, length()}, text.length(), 0, lines_.lineCount(), 0};
    tree_ = text;
    ++revision_;
    lines_.forget();
    foreground_.clear(length());
    if (colorSource_ != nullptr) {
        foreground_.set({0, length()}, ColorRuns::pending);
    }
    background_.clear(length());
    edit.linesAdded = lines_.lineCount();
    pendingEdit_ = pendingEdit_ ? pendingEdit_->followedBy(edit) : edit;
    pendingColors_.reset();
}

std::vector<ColorRun> TextStorage::colorsIn(TextRange range)
{
    std::vector<ColorRun> runs = foreground_.runsIn(range);
    const auto isPending = [](const ColorRun& run) { return run.color == ColorRuns::pending; };
    if (colorSource_ != nullptr && std::any_of(runs.begin(), runs.end(), isPending)) {
        colorSource_->findColors(range.clampedTo(length()));
        runs = foreground_.runsIn(range);
    }
    return runs;
}

void TextStorage::setColorSource(ColorSource* source)
{
    colorSource_ = source;
    const EditingBracket bracket(*this);
    foreground_.set({0, length()}, source != nullptr ? ColorRuns::Color(ColorRuns::pending) : ColorRuns::Color());
    colorsChanged({0, length()});
}

void TextStorage::forgetForeground(TextRange range)
{
    setForeground(range, ColorRuns::pending);
}

void TextStorage::setForeground(TextRange range, ColorRuns::Color color)
{
    const EditingBracket bracket(*this);
    foreground_.set(range, color);
    colorsChanged(range.clampedTo(length()));
}

void TextStorage::setForeground(const std::vector<ColorRun>& runs)
{
    if (runs.empty()) {
        return;
    }
    const EditingBracket bracket(*this);
    foreground_.set(runs);
    colorsChanged(TextRange::between(runs.front().range.location, runs.back().range.end()).clampedTo(length()));
}

void TextStorage::assignForeground(const std::vector<ColorRun>& runs)
{
    const EditingBracket bracket(*this);
    colorsChanged(foreground_.assign(runs));
}

void TextStorage::setBackground(TextRange range, ColorRuns::Color color)
{
    const EditingBracket bracket(*this);
    background_.set(range, color);
    colorsChanged(range.clampedTo(length()));
}

void TextStorage::colorsChanged(TextRange range)
{
    if (range.isEmpty()) {
        return;
    }
    if (!pendingColors_) {
        pendingColors_ = range;
        return;
    }
    pendingColors_ = TextRange::between(std::min(pendingColors_->location, range.location),
                                        std::max(pendingColors_->end(), range.end()));
}

} // namespace kelm
