#include "workbench/status/text_counts.h"

#include "app/document/document.h"
#include "platform/text/character_sets.h"

#include <QTimerEvent>

namespace kelm {

namespace {

/// A text up to this length is counted with each change: a fraction of a millisecond.
constexpr qsizetype ordinaryLength = qsizetype(256) * 1024;
constexpr qsizetype sliceLength = qsizetype(2) * 1024 * 1024;
constexpr int restMilliseconds = 150;

qsizetype newlinesIn(QStringView text)
{
    // Without a branch, so that the compiler can look at several units at once.
    qsizetype count = 0;
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        count += static_cast<int>(static_cast<char16_t>(unit - u'\n') <= u'\r' - u'\n') |
                 static_cast<int>(unit == u'\u0085') | static_cast<int>(static_cast<char16_t>(unit - u'\u2028') <= 1);
    }
    return count;
}

} // namespace

qsizetype newlineSeparatedCount(QStringView text)
{
    return newlinesIn(text) + 1;
}

qsizetype wordCount(QStringView text)
{
    qsizetype count = 0;
    bool isInWord = false;
    for (const QChar character : text) {
        const bool isSpace = isWhitespaceOrNewline(character.unicode());
        count += static_cast<int>(!isSpace && !isInWord);
        isInWord = !isSpace;
    }
    return count;
}

LineCounter::LineCounter(Document& document, QObject* parent) : QObject(parent), document_(document)
{
    connect(&document_, &Document::contentChanged, this, &LineCounter::refreshContent);
    // Nothing is typed yet, so that the first slice may be counted at once.
    countSlice();
    if (position_ < document_.content().size()) {
        timer_ = startTimer(0);
    }
}

void LineCounter::refreshContent()
{
    stopTimer();
    if (document_.content().size() <= ordinaryLength) {
        setCount(newlineSeparatedCount(document_.content()));
        return;
    }
    position_ = 0;
    begun_ = 1;
    timer_ = startTimer(restMilliseconds);
}

void LineCounter::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != timer_) {
        return;
    }
    if (position_ == 0) {
        stopTimer();
        timer_ = startTimer(0);
    }
    countSlice();
}

void LineCounter::countSlice()
{
    // The text is read anew for each slice: a second owner of it would cost the next key a copy of the whole.
    const QStringView text = document_.content();
    const QStringView slice = text.mid(position_, sliceLength);
    begun_ += newlinesIn(slice);
    position_ += slice.size();
    if (position_ >= text.size()) {
        stopTimer();
        setCount(begun_);
    }
}

void LineCounter::stopTimer()
{
    if (timer_ != 0) {
        killTimer(timer_);
        timer_ = 0;
    }
}

void LineCounter::setCount(qsizetype count)
{
    if (count != count_) {
        count_ = count;
        Q_EMIT countChanged();
    }
}

} // namespace kelm
