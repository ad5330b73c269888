#include "text/storage/color_runs.h"

#include <algorithm>

namespace kelm {

ColorRuns::Color ColorRuns::colorAt(qsizetype offset) const
{
    if (offset < 0 || offset >= length_) {
        return {};
    }
    return colors_[static_cast<std::size_t>(runAt(offset))];
}

std::vector<ColorRun> ColorRuns::runsIn(TextRange range) const
{
    std::vector<ColorRun> runs;
    const TextRange wanted = range.clampedTo(length_);
    if (wanted.isEmpty()) {
        return runs;
    }
    for (qsizetype run = runAt(wanted.location); run < starts_.size() && starts_.at(run) < wanted.end(); ++run) {
        if (const Color color = colors_[static_cast<std::size_t>(run)]) {
            const TextRange whole{starts_.at(run), runEnd(run) - starts_.at(run)};
            runs.push_back({whole.intersected(wanted), *color});
        }
    }
    return runs;
}

void ColorRuns::set(TextRange range, Color color)
{
    const TextRange wanted = range.clampedTo(length_);
    if (!wanted.isEmpty()) {
        setSideBySide(wanted, {wanted.location}, {color});
    }
}

void ColorRuns::set(const std::vector<ColorRun>& runs)
{
    std::vector<qsizetype> starts;
    std::vector<Color> colors;
    starts.reserve(runs.size());
    colors.reserve(runs.size());
    TextRange whole;
    for (const ColorRun& run : runs) {
        const TextRange range = run.range.clampedTo(length_);
        if (range.isEmpty()) {
            continue;
        }
        if (colors.empty()) {
            whole.location = range.location;
        }
        whole.length = range.end() - whole.location;
        if (colors.empty() || colors.back() != run.color) {
            starts.push_back(range.location);
            colors.emplace_back(run.color);
        }
    }
    if (!colors.empty()) {
        setSideBySide(whole, std::move(starts), colors);
    }
}

void ColorRuns::setSideBySide(TextRange whole, std::vector<qsizetype> starts, const std::vector<Color>& colors)
{
    qsizetype first = splitAt(whole.location);
    qsizetype last = splitAt(whole.end());
    // Runs of one colour that meet become one, or marks set and taken away all day would cut the text to shreds.
    if (first > 0 && colors_[static_cast<std::size_t>(first - 1)] == colors.front()) {
        starts.front() = starts_.at(--first);
    }
    if (last < starts_.size() && colors_[static_cast<std::size_t>(last)] == colors.back()) {
        ++last;
    }
    replaceRuns(first, last - first, starts, colors);
}

TextRange ColorRuns::assign(const std::vector<ColorRun>& runs)
{
    std::deque<qsizetype> starts;
    std::deque<Color> colors;
    const auto append = [&](qsizetype start, Color color) {
        if (!colors.empty() && colors.back() == color) {
            return;
        }
        starts.push_back(start);
        colors.push_back(color);
    };
    qsizetype at = 0;
    for (const ColorRun& run : runs) {
        const TextRange range = run.range.clampedTo(length_);
        if (range.isEmpty() || range.end() <= at) {
            continue;
        }
        if (range.location > at) {
            append(at, {});
        }
        append(std::max(at, range.location), run.color);
        at = range.end();
    }
    if (at < length_) {
        append(at, {});
    }

    // What is the same from the front and from the back needs no new painting.
    const auto newCount = static_cast<qsizetype>(starts.size());
    const qsizetype oldCount = starts_.size();
    const auto sameRun = [&](qsizetype oldRun, qsizetype newRun) {
        return starts_.at(oldRun) == starts[static_cast<std::size_t>(newRun)] &&
               colors_[static_cast<std::size_t>(oldRun)] == colors[static_cast<std::size_t>(newRun)];
    };
    qsizetype head = 0;
    while (head < oldCount && head < newCount && sameRun(head, head)) {
        ++head;
    }
    qsizetype tail = 0;
    while (tail < oldCount - head && tail < newCount - head && sameRun(oldCount - 1 - tail, newCount - 1 - tail)) {
        ++tail;
    }
    TextRange changed;
    if (head < oldCount || head < newCount) {
        // Behind the equal head the colours may differ from the earlier of the two next starts on, or, where the runs
        // just went on longer than before, from the end of the last equal one.
        const qsizetype from = std::min(head < oldCount ? starts_.at(head) : length_,
                                        head < newCount ? starts[static_cast<std::size_t>(head)] : length_);
        qsizetype to = tail > 0 ? starts_.at(oldCount - tail) : length_;
        const qsizetype lastOld = oldCount - tail - 1;
        const qsizetype lastNew = newCount - tail - 1;
        if (lastOld >= head && lastNew >= head &&
            colors_[static_cast<std::size_t>(lastOld)] == colors[static_cast<std::size_t>(lastNew)]) {
            to = std::max(starts_.at(lastOld), starts[static_cast<std::size_t>(lastNew)]);
        }
        changed = TextRange::between(from, std::max(from, to));
    }
    starts_.reset(std::move(starts));
    colors_ = std::move(colors);
    return changed;
}

void ColorRuns::clear(qsizetype textLength)
{
    length_ = textLength;
    if (textLength > 0) {
        starts_.reset({0});
        colors_.assign(1, Color());
    } else {
        starts_.reset({});
        colors_.clear();
    }
}

void ColorRuns::textReplaced(TextRange range, qsizetype newLength)
{
    if (length_ == 0 || (range.location == 0 && range.length == length_)) {
        clear(length_ + newLength - range.length);
        return;
    }
    // The runs that begin in or right behind the replaced range make way. What is left of the last of them begins
    // behind the new text; at the top of the text it takes the new text in as well, and elsewhere the run before does.
    // Two of one colour that come together are one: letters are not shaped across the border of two runs.
    const qsizetype first = range.location > 0 ? runAt(range.location - 1) + 1 : 0;
    const qsizetype next = starts_.upperBound(range.end());
    std::vector<qsizetype> starts;
    std::vector<Color> colors;
    const bool isMerged =
        first > 0 && colors_[static_cast<std::size_t>(first - 1)] == colors_[static_cast<std::size_t>(next - 1)];
    if (range.end() < length_ && next > first && !isMerged) {
        starts.push_back(range.location > 0 ? range.location + newLength : 0);
        colors.push_back(colors_[static_cast<std::size_t>(next - 1)]);
    }
    const qsizetype change = newLength - range.length;
    replaceRuns(first, next - first, starts, colors);
    starts_.shift(first + static_cast<qsizetype>(starts.size()), change);
    length_ += change;
}

qsizetype ColorRuns::splitAt(qsizetype offset)
{
    if (offset >= length_) {
        return starts_.size();
    }
    const qsizetype run = runAt(offset);
    if (starts_.at(run) == offset) {
        return run;
    }
    replaceRuns(run + 1, 0, {offset}, {colors_[static_cast<std::size_t>(run)]});
    return run + 1;
}

void ColorRuns::replaceRuns(qsizetype first, qsizetype count, const std::vector<qsizetype>& starts,
                            const std::vector<Color>& colors)
{
    starts_.replace(first, count, starts);
    // What stands behind is moved once, if at all.
    const qsizetype common = std::min(count, static_cast<qsizetype>(colors.size()));
    std::copy_n(colors.begin(), common, colors_.begin() + first);
    if (count > common) {
        colors_.erase(colors_.begin() + first + common, colors_.begin() + first + count);
    } else {
        colors_.insert(colors_.begin() + first + common, colors.begin() + common, colors.end());
    }
}

} // namespace kelm
