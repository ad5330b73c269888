#include "editor/kept_ready/view/auto_complete_manager.h"

#include "editor/kept_ready/completion_ranking.h"
#include "editor/kept_ready/view/auto_complete_view.h"
#include "platform/events/key_event.h"
#include "text/boundaries/text_boundaries.h"

#include <QKeyEvent>

namespace kelm {

namespace {

/// The window's size, in points.
constexpr QSize windowSize(300, 200);

bool isWordUnit(QChar unit)
{
    return unit == u'_' || unit == u'@' || unit.isLetterOrNumber() || unit.isMark();
}

std::unique_ptr<QWidget> makeWindow(AutoCompleteManager& manager)
{
    auto window = std::make_unique<QWidget>(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                                         Qt::NoDropShadowWindowHint | Qt::WindowDoesNotAcceptFocus);
    window->setAttribute(Qt::WA_TranslucentBackground);
    window->setAttribute(Qt::WA_ShowWithoutActivating);
    window->setFixedSize(windowSize);
    new AutoCompleteView(manager, window.get());
    return window;
}

} // namespace

AutoCompleteManager::AutoCompleteManager(TextView* textView, QObject* parent) : QObject(parent), textView_(textView) {}

AutoCompleteManager::~AutoCompleteManager() = default;

void AutoCompleteManager::setSelectedIndex(qsizetype index)
{
    if (index != selectedIndex_) {
        selectedIndex_ = index;
        Q_EMIT selectedIndexChanged();
    }
}

void AutoCompleteManager::triggerCompletion(Language language)
{
    if (!textView_) {
        return;
    }
    const QString& text = textView_->text();
    const qsizetype end = textView_->selectedRange().location;
    qsizetype start = end;
    while (start > 0 && isWordUnit(text[start - 1])) {
        --start;
    }
    currentWord_ = text.sliced(start, end - start);
    wordRange_ = {start, graphemeCount(currentWord_)};
    if (currentWord_.isEmpty()) {
        close();
        return;
    }
    suggestions_ = getSuggestions(currentWord_, language);
    Q_EMIT suggestionsChanged();
    if (suggestions_.isEmpty()) {
        close();
    } else {
        setSelectedIndex(0);
        showCompletion();
    }
}

bool AutoCompleteManager::handleKeyEvent(const QKeyEvent& event)
{
    if (!isVisible_) {
        return false;
    }
    switch (virtualKeyCode(event)) {
    case virtualKey::returnKey:
    case virtualKey::tab:
        confirmSelection();
        return true;
    case virtualKey::escape:
        close();
        return true;
    case virtualKey::downArrow:
        selectNext();
        return true;
    case virtualKey::upArrow:
        selectPrevious();
        return true;
    default:
        return false;
    }
}

QList<CompletionItem> AutoCompleteManager::getSuggestions(const QString& word, Language language)
{
    return kelm::getSuggestions(word, language);
}

int AutoCompleteManager::relevanceScore(const QString& text, const QString& prefix)
{
    return kelm::relevanceScore(text, prefix);
}

void AutoCompleteManager::showCompletion()
{
    setIsVisible(true);
    if (!textView_) {
        return;
    }
    const QRect word = textView_->caretRect({wordRange_.location, false}).toRect();
    const QPoint belowWord = textView_->viewport()->mapToGlobal(QPoint(word.left(), word.top() + word.height()));
    showCompletionWindow(belowWord + QPoint(0, windowSize.height()));
}

void AutoCompleteManager::showCompletionWindow(QPoint at)
{
    if (completionWindow_ == nullptr) {
        completionWindow_ = makeWindow(*this);
    }
    completionWindow_->move(at.x(), at.y() - windowSize.height());
    completionWindow_->show();
    completionWindow_->raise();
}

void AutoCompleteManager::selectNext()
{
    if (selectedIndex_ < suggestions_.size() - 1) {
        setSelectedIndex(selectedIndex_ + 1);
    }
}

void AutoCompleteManager::selectPrevious()
{
    if (selectedIndex_ >= 1) {
        setSelectedIndex(selectedIndex_ - 1);
    }
}

void AutoCompleteManager::confirmSelection()
{
    if (selectedIndex_ >= 0 && selectedIndex_ < suggestions_.size()) {
        insertCompletion(suggestions_[selectedIndex_]);
        close();
    }
}

void AutoCompleteManager::insertCompletion(const CompletionItem& item)
{
    if (!textView_) {
        return;
    }
    const QString inserted = expandedSnippet(item.insertText.value_or(item.text));
    textView_->commitComposition();
    const TextRange replaced = wordRange_.clampedTo(textView_->storage().length());
    textView_->editor().apply({{replaced, inserted}}, EditKind::other);
    textView_->scrollRangeToVisible(textView_->selectedRange());
}

void AutoCompleteManager::setIsVisible(bool isVisible)
{
    if (isVisible != isVisible_) {
        isVisible_ = isVisible;
        Q_EMIT isVisibleChanged();
    }
}

void AutoCompleteManager::close()
{
    setIsVisible(false);
    if (completionWindow_ != nullptr) {
        completionWindow_->hide();
    }
}

} // namespace kelm
