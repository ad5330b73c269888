// The widget that shows and edits a text.
#pragma once

#include "text/editing/text_editor.h"
#include "text/layout/text_layout.h"
#include "text/storage/text_storage.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QColor>
#include <QPointer>
#include <QRegion>

#include <memory>
#include <vector>

class QMenu;

namespace kelm {

class FindBar;
class PrimarySelection;
class TextViewInputMethod;
class TextViewMouse;

/// What the owner of a text view is told.
class TextViewDelegate
{
public:
    virtual ~TextViewDelegate() = default;

    /// The user has changed the text. Not sent for edits of the storage that others make.
    virtual void textDidChange() = 0;
    virtual void textViewDidChangeSelection() = 0;
};

struct TextViewColors
{
    QColor background = Qt::white;
    QColor text = Qt::black;
    QColor insertionPoint = Qt::black;
    QColor selection = QColor(0, 122, 255, 102);
    /// Behind what a search has found, and behind the match that it stands at.
    QColor match = QColor(255, 204, 0, 80);
    QColor currentMatch = QColor(255, 149, 0, 140);
};

/// Text stretches that are marked behind the letters, such as what a search has found.
struct TextHighlight
{
    TextRange range;
    QColor color;
};

/// A plain text in one font, wrapped at the view's width and scrolled by pixels. The view owns its storage, its layout
/// and its editor and asks them; keys, mouse, input methods, the clipboard, painting and accessibility are parts with
/// files of their own.
///
/// A key that was pressed before the keyboard came here and is still held down edits nothing: it has done what it was
/// pressed for.
///
/// Places on the page are told as y from the top of the text, the inset included, in device-independent pixels.
class TextView : public QAbstractScrollArea
{
    Q_OBJECT
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly)

public:
    explicit TextView(QWidget* parent = nullptr);
    ~TextView() override;

    TextStorage& storage() { return storage_; }
    const TextStorage& storage() const { return storage_; }
    TextLayout& textLayout() { return layout_; }
    TextEditor& editor() { return editor_; }
    const TextEditor& editor() const { return editor_; }

    void setDelegate(TextViewDelegate* delegate) { delegate_ = delegate; }

    /// What is behind a text that may be shown in short; it outlives the view. To be set before the find bar is made.
    void setWholeText(WholeText* text);
    WholeText* wholeText() const { return wholeText_; }

    /// A copy of what is shown, linear in it.
    QString text() const { return storage_.text(); }
    TextRange selectedRange() const { return editor_.selectedRange(); }
    void setSelectedRange(TextRange range);

    bool isReadOnly() const { return editor_.isReadOnly(); }
    void setReadOnly(bool readOnly);

    const TextViewColors& colors() const { return colors_; }
    void setColors(const TextViewColors& colors);
    /// `rowHeight` in points; the font's own height where none is given.
    void setTextFont(const QFont& font, std::optional<qreal> rowHeight = {});
    /// Distance of the text from the view's edges.
    void setTextInset(QSizeF inset);
    QSizeF textInset() const { return inset_; }
    /// The width, in points, of the box that the text is wrapped in, its padding included; what the insets leave of the
    /// view where none is given.
    void setContainerWidth(std::optional<qreal> width);
    void setHighlights(std::vector<TextHighlight> highlights);
    const std::vector<TextHighlight>& highlights() const { return highlights_; }

    /// The find bar, made when it is first asked for.
    FindBar& findBar();
    /// How much at the top of the viewport something lies over the text, in points: the text goes down by as much, what
    /// is scrolled to is put below it, and the first line can be scrolled out from under it.
    void setTopObscured(qreal height);

    /// The part of the page that is on screen.
    QRectF visibleRect() const;
    qreal pageHeight() const;
    /// The rows on screen; their tops count from the top of the viewport.
    std::vector<TextRow> visibleRows();
    /// The lines on screen, more or less: reckoned from what is known of their rows, without laying any out.
    TextRange shownRange() const;
    /// Scrolls so that `y` of the page is at the top, as far as the page goes.
    void scrollToY(qreal y);
    void scrollRangeToVisible(TextRange range);
    /// The place in the text at a point of the viewport.
    CaretPlace placeAt(QPoint point);
    /// A caret's rectangle in the viewport, without width.
    QRectF caretRect(CaretPlace place);

    /// Puts a running composition of the input method into the text, as one undo step.
    void commitComposition();
    bool isComposing() const { return layout_.preedit().has_value(); }

    /// The menu of the right mouse button; the caller owns it.
    virtual QMenu* makeContextMenu();

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

public Q_SLOTS:
    void undo();
    void redo();
    void cut();
    void copy();
    virtual void paste();
    void deleteSelection();
    void selectAll();
    void showFindBar();
    void showReplaceBar();
    void findNext();
    void findPrevious();
    void useSelectionForFind();

Q_SIGNALS:
    /// The part of the page on screen has changed, by scrolling or because the page or the view has another size.
    void visibleRectChanged();
    void copyAvailable(bool available);

protected:
    /// Puts in what the middle mouse button pastes at an offset, with the caret behind it, as one undo step.
    virtual void pasteAt(const QString& text, qsizetype offset);

    /// Takes a key before the view's own keys do; true when the key is used up.
    virtual bool keyDown(QKeyEvent* event);

    /// Whether a key is for the text, and for no command of the window.
    virtual bool isKeyOfText(const QKeyEvent& event) const;

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    friend class TextViewMouse;
    friend class TextViewInputMethod;

    void textEdited(const TextEdit& edit);
    void selectionChanged();
    void runKeyAction(int action);
    bool goesOnWhenHeld(const QKeyEvent& event) const;
    void keepPrimaryCaret();

    qreal scrollY() const;
    void setAnchor(qreal y);
    /// Scrolls over the rows as they are; what comes into sight does not move what is there.
    void scrollBy(qreal distance);
    void scrollBarMoved(int value);
    /// Scrolls back where the page has become shorter; true when it did.
    bool keepWithinPage();
    void syncScrollBar();
    void queueScrollSync();
    void updateWrapWidth();
    /// Makes a change after which rows are others, with the same text at the top of the screen.
    template <typename Change>
    void keepingTopRow(Change change);
    void restartBlink();
    void showCaret();
    void showDropCaret(std::optional<CaretPlace> place);
    QPointF pageOrigin() const;
    QRectF caretBox(CaretPlace place);
    void paintRowBackground(QPainter& painter, const TextRow& row, const std::vector<ColorRun>& marks);
    void paintRange(QPainter& painter, const TextRow& row, TextRange range, const QColor& color, bool toEdge);
    void paintCarets(QPainter& painter, const std::vector<TextRow>& rows);
    /// The boxes of all carets in the rows, or of the composition's own caret.
    std::vector<QRectF> caretBoxes(const std::vector<TextRow>& rows);

    TextStorage storage_;
    TextLayout layout_;
    TextEditor editor_;
    TextViewDelegate* delegate_ = nullptr;
    WholeText* wholeText_ = nullptr;
    std::unique_ptr<PrimarySelection> primarySelection_;
    std::unique_ptr<TextViewMouse> mouse_;
    std::unique_ptr<TextViewInputMethod> inputMethod_;
    FindBar* findBar_ = nullptr;
    qreal topObscured_ = 0;
    TextViewColors colors_;
    std::vector<TextHighlight> highlights_;
    QSizeF inset_{4, 4};
    std::optional<qreal> containerWidth_;

    // What is at the top of the viewport. Lines above may change their rows, and what is on screen stays.
    /// What of the viewport shows an edit that only changed a line's rows as they stand; absent where more may have
    /// moved.
    std::optional<QRect> placeOfEdit(const TextEdit& edit);
    /// Asks for a painting of where carets stood and stand, or of everything where more than carets has changed.
    void updateCarets();
    std::optional<QRegion> placesOfCarets(const std::vector<TextRow>& rows);

    /// What the last painting of the whole viewport, and those of parts since, stand on.
    struct Painted
    {
        qreal scrollY = 0;
        quint64 rowsRevision = 0;
        /// Around the carets; absent where there were selections or a composition.
        std::optional<QRegion> carets;
    };
    Painted painted_;
    PagePlace anchor_;
    // What was at the top before the width changed, so that many changes do not creep away from it.
    std::optional<qsizetype> topBeforeResize_;
    bool isSyncingScrollBar_ = false;
    bool isScrollSyncQueued_ = false;

    /// Whether no key has been pressed anew since the keyboard came: what repeats until then was pressed elsewhere.
    bool awaitsPress_ = false;

    QBasicTimer blinkTimer_;
    bool isCaretOn_ = true;
    std::optional<CaretPlace> dropCaret_;
};

} // namespace kelm
