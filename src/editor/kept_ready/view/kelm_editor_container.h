// The fuller editing surface, with completion, cursors and selection commands.
#pragma once

#include "app/document/text_attributes.h"
#include "app/language/language.h"
#include "editor/folding/code_folding_manager.h"
#include "editor/highlighter/syntax_highlighter.h"
#include "editor/kept_ready/view/auto_complete_manager.h"
#include "editor/kept_ready/view/line_number_view.h"
#include "editor/kept_ready/view/multi_cursor_manager.h"
#include "editor/kept_ready/view/selection_manager.h"
#include "editor/themes/editor_theme.h"
#include "text/view/text_view.h"

#include <QPointer>
#include <QWidget>

#include <optional>

namespace kelm {

/// What a `KelmEditorContainer` tells, in this order: the new text, the caret, and the selection or none.
class KelmEditorDelegate : public QObject
{
public:
    virtual void textDidChange(const QString& text) = 0;
    virtual void cursorDidChange(const CursorPosition& cursor) = 0;
    virtual void selectionDidChange(const std::optional<TextSelection>& selection) = 0;
};

/// Lays out a gutter with bookmarks beside a text and keeps the managers of what a code editor can do more. It colours
/// a new text, language or theme at once and does not follow typing. Kept ready: the program's window is made of
/// `EditorContainerView`s.
class KelmEditorContainer final : public QWidget, public TextViewDelegate
{
public:
    static constexpr int gutterWidth = 65;

    /// The centre outlives the container.
    explicit KelmEditorContainer(NotificationCenter& center, QWidget* parent = nullptr);
    ~KelmEditorContainer() override;

    TextView& textView() { return *textView_; }
    LineNumberView& lineNumberView() { return *lineNumberView_; }
    SyntaxHighlighter& highlighter() { return highlighter_; }
    AutoCompleteManager& autoCompleteManager() { return autoCompleteManager_; }
    CodeFoldingManager& codeFoldingManager() { return codeFoldingManager_; }
    MultiCursorManager& multiCursorManager() { return multiCursorManager_; }
    SelectionManager& selectionManager() { return selectionManager_; }

    QPointer<KelmEditorDelegate> delegate;

    Language currentLanguage() const { return currentLanguage_; }
    void setCurrentLanguage(Language language);
    bool showLineNumbers() const { return showLineNumbers_; }
    void setShowLineNumbers(bool show);
    const EditorTheme& theme() const { return highlighter_.theme; }
    void setTheme(const EditorTheme& theme);

    /// Shows another text, without an undo history.
    void setText(const QString& text);
    QString text() const { return textView_->text(); }

    // TextViewDelegate
    void textDidChange() override;
    void textViewDidChangeSelection() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void layOut();
    void highlight();
    CursorPosition positionAt(qsizetype offset) const;

    TextView* textView_;
    LineNumberView* lineNumberView_;
    SyntaxHighlighter highlighter_;
    AutoCompleteManager autoCompleteManager_;
    CodeFoldingManager codeFoldingManager_;
    MultiCursorManager multiCursorManager_;
    SelectionManager selectionManager_;
    Language currentLanguage_ = Language::swift;
    bool showLineNumbers_ = true;
};

} // namespace kelm
