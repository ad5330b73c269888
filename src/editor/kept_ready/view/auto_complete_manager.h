// Completion while the user types.
#pragma once

#include "app/language/language.h"
#include "editor/kept_ready/completion_item.h"
#include "text/view/text_view.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

namespace kelm {

/// Offers words for the one in front of the caret in a small window below it, and puts the chosen one in. The text view
/// keeps the keyboard; whoever takes its keys hands them to `handleKeyEvent` first. Kept ready: the program's window
/// makes none.
///
/// Main thread only. Without the view everything does nothing.
class AutoCompleteManager final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isVisible READ isVisible NOTIFY isVisibleChanged)
    Q_PROPERTY(QList<kelm::CompletionItem> suggestions READ suggestions NOTIFY suggestionsChanged)
    Q_PROPERTY(qsizetype selectedIndex READ selectedIndex WRITE setSelectedIndex NOTIFY selectedIndexChanged)

public:
    explicit AutoCompleteManager(TextView* textView, QObject* parent = nullptr);
    ~AutoCompleteManager() override;

    QPointer<TextView> textView() const { return textView_; }
    bool isVisible() const { return isVisible_; }
    const QList<CompletionItem>& suggestions() const { return suggestions_; }
    qsizetype selectedIndex() const { return selectedIndex_; }
    void setSelectedIndex(qsizetype index);
    const QString& currentWord() const { return currentWord_; }
    /// Where `currentWord` begins, and how many characters it has.
    TextRange wordRange() const { return wordRange_; }
    /// The window of the list, none before it was first shown.
    QWidget* completionWindow() const { return completionWindow_.get(); }

    /// Looks for the word in front of the caret and shows what begins with it, or closes the list.
    void triggerCompletion(Language language);
    /// While the list is shown, takes the keys that move in it, choose and close it. Returns whether the key is used
    /// up.
    bool handleKeyEvent(const QKeyEvent& event);
    static QList<CompletionItem> getSuggestions(const QString& word, Language language);
    static int relevanceScore(const QString& text, const QString& prefix);

    /// Shows the list below the word.
    void showCompletion();
    /// Shows the window with its bottom left corner at a point of the screen.
    void showCompletionWindow(QPoint at);
    /// The next and the previous entry; at either end they do nothing.
    void selectNext();
    void selectPrevious();
    /// Puts the selected entry in and closes the list.
    void confirmSelection();
    void insertCompletion(const CompletionItem& item);

Q_SIGNALS:
    void isVisibleChanged();
    void suggestionsChanged();
    void selectedIndexChanged();

private:
    void setIsVisible(bool isVisible);
    void close();

    QPointer<TextView> textView_;
    bool isVisible_ = false;
    QList<CompletionItem> suggestions_;
    qsizetype selectedIndex_ = 0;
    std::unique_ptr<QWidget> completionWindow_;
    QString currentWord_;
    TextRange wordRange_;
};

} // namespace kelm
