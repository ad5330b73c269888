// The editing surface of one document.
#pragma once

#include "app/language/language.h"
#include "editor/folding/code_folding_manager.h"
#include "editor/highlighter/syntax_highlighter.h"
#include "editor/minimap/view/editor_minimap_view.h"
#include "editor/themes/editor_theme.h"
#include "editor/view/folded_text.h"
#include "editor/view/simple_line_number_view.h"
#include "platform/events/notification_center.h"
#include "platform/events/scheduler.h"
#include "text/storage/text_position.h"
#include "text/view/text_view.h"

#include <QPointer>
#include <QRectF>
#include <QWidget>

#include <utility>

namespace kelm {

/// What an editor container tells the document's side. Lines and columns count from 1.
class EditorContainerDelegate : public QObject
{
public:
    /// The user is about to change the text; another one may be set yet.
    virtual void textWillChange() = 0;
    /// The user has changed the text.
    virtual void textDidChange() = 0;
    /// The view ends, and its text with it.
    virtual void textWillEnd() = 0;
    virtual void cursorPositionChanged(qsizetype line, qsizetype column) = 0;
};

/// Lays out gutter, text and minimap of one document side by side and runs their highlight cycle: colours and foldable
/// regions follow typing after a pause of 0.15 seconds, and a new text, language or theme at once.
///
/// Folding changes the text of the view and not that of the document. An edit by the user first unfolds whatever is
/// folded, so that the text that reaches the document is whole.
class EditorContainerView final : public QWidget, public TextViewDelegate
{
    Q_OBJECT

public:
    static constexpr int gutterWidth = 55;
    static constexpr int minimapWidth = 80;

    /// The services outlive the view.
    EditorContainerView(Scheduler& scheduler, NotificationCenter& notifications, QWidget* parent = nullptr);
    ~EditorContainerView() override;

    TextView& textView() { return *textView_; }
    SimpleLineNumberView& lineNumberView() { return *lineNumberView_; }
    EditorMinimapView& minimapView() { return *minimapView_; }
    CodeFoldingManager& codeFoldingManager() { return codeFoldingManager_; }
    /// Whether no worker is at work on the colours or the foldable regions.
    bool isSettled() const { return syntaxHighlighter_.isSettled() && codeFoldingManager_.isSettled(); }
    /// Held weakly.
    void setDelegate(EditorContainerDelegate* delegate) { delegate_ = delegate; }

    /// Shows another text; carets stay where they stood as far as the text goes. The first text begins the undo
    /// history. A later one is what a command made of the document's, and an undo step; the delegate is not told of it.
    void setText(const TextTree& text);
    void setText(const QString& text) { setText(TextTree(text)); }
    /// Shows what the document's file has become. Only what differs is another text: carets, folds and what is on
    /// screen stay with the text around. An undo step, too, of which the delegate is not told.
    void takeFileText(const TextTree& text);
    /// A copy of what is shown, linear in it.
    QString text() const { return textView_->text(); }
    /// The document's text: what is shown, with the body of every fold in its place.
    TextTree wholeText() const { return codeFoldingManager_.unfoldedText(); }

    void setTheme(const EditorTheme& theme);
    const EditorTheme& theme() const { return syntaxHighlighter_.theme; }

    Language currentLanguage() const { return currentLanguage_; }
    void setCurrentLanguage(Language language);

    bool showLineNumbers() const { return showLineNumbers_; }
    void setShowLineNumbers(bool show);
    bool showMinimap() const { return showMinimap_; }
    void setShowMinimap(bool show);
    const std::optional<LineRegion>& lessonRegion() const { return lineNumberView_->lessonRegion; }
    void setLessonRegion(std::optional<LineRegion> region);

    /// Scrolls a line, counted from 1, to the middle of the view. Lines are reckoned as one row each.
    void scrollToLine(qsizetype line);
    /// Puts the caret at a place of the document's text, or the nearest that there is, and shows it, out of a fold if
    /// need be.
    void showPlace(LineAndColumn place);

    // TextViewDelegate
    void textDidChange() override;
    void textViewDidChangeSelection() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void setUpTextView();
    void replaceText(const TextTree& text);
    void showNewText();
    void setUpSideViews();
    void layOut();
    void debouncedHighlight();
    /// Recolours the whole text.
    void highlight();
    void detectFoldableRegions();
    void toggleFold(qsizetype line);
    void prepareEdit();
    void unfold();
    /// Without telling the delegate of a text that changed: it has had the whole one all the time.
    void unfoldUnheard();
    void foldsChanged();
    void scrollViewDidScroll();
    void refreshGutter();
    /// Takes the keyboard with the caret at the start of the text.
    void focusEditorRequested();

    TextView* textView_;
    SimpleLineNumberView* lineNumberView_;
    EditorMinimapView* minimapView_;
    SyntaxHighlighter syntaxHighlighter_;
    CodeFoldingManager codeFoldingManager_;
    FoldedText foldedText_;
    QPointer<EditorContainerDelegate> delegate_;
    bool showLineNumbers_ = true;
    bool showMinimap_ = true;
    Language currentLanguage_ = Language::plainText;
    bool hasText_ = false;
    bool takesDocumentsText_ = false;
    /// The part of the page, and the state of its rows, that the gutter was last asked to show.
    std::pair<QRectF, quint64> gutterShows_;
    Debounce highlightDebounce_;
};

} // namespace kelm
