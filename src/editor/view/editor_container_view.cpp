#include "editor/view/editor_container_view.h"

#include "editor/view/editor_text.h"
#include "editor/view/kept_view.h"
#include "platform/events/main_queue.h"
#include "platform/style/view/style.h"
#include "text/storage/text_position.h"

#include <QResizeEvent>
#include <QScopedValueRollback>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace kelm {

namespace {

constexpr std::chrono::milliseconds highlightDelay{150};

} // namespace

EditorContainerView::EditorContainerView(Scheduler& scheduler, NotificationCenter& notifications, QWidget* parent)
    : QWidget(parent),
      textView_(new TextView(this)),
      lineNumberView_(new SimpleLineNumberView(this)),
      minimapView_(new EditorMinimapView(this)),
      syntaxHighlighter_(EditorTheme::monokai()),
      codeFoldingManager_(notifications),
      foldedText_(codeFoldingManager_, [this] { foldsChanged(); }),
      highlightDebounce_(scheduler, highlightDelay, [this] { debouncedHighlight(); })
{
    setUpTextView();
    setUpSideViews();
    setFocusProxy(textView_);
    layOut();

    connect(textView_, &TextView::visibleRectChanged, this, &EditorContainerView::scrollViewDidScroll);
    notifications.addObserver(this, notifications::focusEditor,
                              [this](const Notification&) { onMainQueue(this, [this] { focusEditorRequested(); }); });
}

EditorContainerView::~EditorContainerView()
{
    textView_->setDelegate(nullptr);
    textView_->setWholeText(nullptr);
    if (delegate_) {
        delegate_->textWillEnd();
    }
}

void EditorContainerView::setUpTextView()
{
    setUpEditorText(*textView_, {4, 4});
    textView_->setDelegate(this);
    textView_->setWholeText(&foldedText_);
    textView_->editor().setBeforeEdit([this] { prepareEdit(); });
}

void EditorContainerView::setUpSideViews()
{
    codeFoldingManager_.setStorage(&textView_->storage());
    codeFoldingManager_.onRegionsFound = [this] { lineNumberView_->update(); };
    syntaxHighlighter_.setShownRange([this] { return textView_->shownRange(); });
    lineNumberView_->textView = textView_;
    lineNumberView_->codeFoldingManager = &codeFoldingManager_;
    lineNumberView_->onFoldToggle = [this](qsizetype line) { toggleFold(line); };
    minimapView_->setTextView(textView_);
    minimapView_->onLineSelected = [this](qsizetype line) { scrollToLine(line); };
}

void EditorContainerView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void EditorContainerView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        applySelectionColor(*textView_, style::appearanceOf(*this));
    }
    QWidget::changeEvent(event);
}

void EditorContainerView::layOut()
{
    const int left = showLineNumbers_ ? gutterWidth : 0;
    const int right = showMinimap_ ? minimapWidth : 0;
    lineNumberView_->setVisible(showLineNumbers_);
    minimapView_->setVisible(showMinimap_);
    lineNumberView_->setGeometry(0, 0, left, height());
    textView_->setGeometry(left, 0, std::max(0, width() - left - right), height());
    minimapView_->setGeometry(width() - right, 0, right, height());
    if (showMinimap_) {
        minimapView_->update();
    }
}

void EditorContainerView::setShowLineNumbers(bool show)
{
    showLineNumbers_ = show;
    layOut();
}

void EditorContainerView::setShowMinimap(bool show)
{
    showMinimap_ = show;
    layOut();
}

void EditorContainerView::setLessonRegion(std::optional<LineRegion> region)
{
    lineNumberView_->lessonRegion = region;
    lineNumberView_->update();
}

void EditorContainerView::setText(const TextTree& text)
{
    textView_->commitComposition();
    unfoldUnheard();
    // The carets' places in the whole text, which those in a folded one are not.
    const SelectionSet carets = textView_->editor().selections();
    if (hasText_ && !textView_->isReadOnly()) {
        replaceText(text);
    } else {
        textView_->storage().setText(text);
    }
    hasText_ = true;
    textView_->editor().setSelections(carets);
    showNewText();
}

void EditorContainerView::takeFileText(const TextTree& text)
{
    if (!hasText_ || textView_->isReadOnly()) {
        setText(text);
        return;
    }
    KeptView kept(*textView_, codeFoldingManager_);
    replaceText(text);
    showNewText();
    kept.restore();
    // What is being composed is typed into the new text, as the keys behind it are.
    textView_->commitComposition();
    // Folding gives what is shown other colours and regions.
    showNewText();
}

void EditorContainerView::showNewText()
{
    highlightDebounce_.cancel();
    highlight();
    detectFoldableRegions();
    minimapView_->update();
}

void EditorContainerView::replaceText(const TextTree& text)
{
    unfoldUnheard();
    const QScopedValueRollback taking(takesDocumentsText_, true);
    const TextTree& now = textView_->storage().tree();
    const qsizetype start = commonStart(now, text);
    const qsizetype end = commonEnd(now, text, start);
    const TextRange replaced = TextRange::between(start, now.length() - end);
    textView_->editor().insertText(text.part(TextRange::between(start, text.length() - end)), replaced);
}

void EditorContainerView::setTheme(const EditorTheme& theme)
{
    syntaxHighlighter_.theme = theme;
    applyThemeColors(*textView_, theme);
    lineNumberView_->backgroundColor = theme.gutterColor.toColor();
    lineNumberView_->textColor = theme.lineNumberColor.toColor();
    minimapView_->theme = theme;
    minimapView_->applyThemeToLayer();
    minimapView_->update();
    highlight();
}

void EditorContainerView::setCurrentLanguage(Language language)
{
    currentLanguage_ = language;
    highlight();
    detectFoldableRegions();
    minimapView_->language = language;
    minimapView_->update();
}

void EditorContainerView::scrollToLine(qsizetype line)
{
    const qreal y = static_cast<qreal>(line - 1) * editorLineHeight - textView_->viewport()->height() / 2.0;
    textView_->scrollToY(std::max<qreal>(0, y));
}

void EditorContainerView::showPlace(LineAndColumn place)
{
    textView_->commitComposition();
    const TextRange caret{offsetAt(wholeText(), place), 0};
    // The character at the place, so that the first one of what is hidden is seen.
    foldedText_.reveal({caret.location, 1});
    const TextRange shown = foldedText_.shown(caret);
    textView_->setSelectedRange(shown);
    textView_->scrollRangeToVisible(shown);
}

void EditorContainerView::textDidChange()
{
    if (delegate_ && !takesDocumentsText_) {
        delegate_->textDidChange();
    }
    refreshGutter();
    highlightDebounce_.restart();
}

void EditorContainerView::textViewDidChangeSelection()
{
    if (delegate_) {
        const LineAndColumn place = lineAndColumnAt(textView_->storage().tree(), textView_->selectedRange().location);
        delegate_->cursorPositionChanged(place.line, place.column);
    }
}

void EditorContainerView::debouncedHighlight()
{
    highlight();
    detectFoldableRegions();
}

void EditorContainerView::highlight()
{
    // Colours neither move a caret nor change the selection, so that there is nothing to bring back afterwards.
    syntaxHighlighter_.highlight(&textView_->storage(), currentLanguage_);
    lineNumberView_->update();
}

void EditorContainerView::detectFoldableRegions()
{
    codeFoldingManager_.detectFoldableRegions(currentLanguage_);
    lineNumberView_->update();
}

void EditorContainerView::toggleFold(qsizetype line)
{
    if (textView_->isComposing()) {
        // What is being composed belongs to the text that is about to change.
        textView_->commitComposition();
        detectFoldableRegions();
    }
    if (codeFoldingManager_.markAt(line)) {
        codeFoldingManager_.toggle(line);
        foldsChanged();
    }
}

void EditorContainerView::foldsChanged()
{
    // The text that is shown is another one now, and its colours and regions are those of that text.
    highlight();
    detectFoldableRegions();
    // A caret whose offset stays may stand in another line.
    textViewDidChangeSelection();
}

void EditorContainerView::prepareEdit()
{
    if (takesDocumentsText_) {
        return;
    }
    if (delegate_) {
        delegate_->textWillChange();
    }
    unfold();
}

void EditorContainerView::unfold()
{
    if (codeFoldingManager_.isTextFolded()) {
        codeFoldingManager_.unfoldAll();
        // What comes next may change nothing, and then nobody else has regions and colours found in what is shown now.
        highlightDebounce_.restart();
    }
}

void EditorContainerView::unfoldUnheard()
{
    const QScopedValueRollback taking(takesDocumentsText_, true);
    unfold();
}

void EditorContainerView::refreshGutter()
{
    // Numbers stand where they stood while no row moves.
    const std::pair now(textView_->visibleRect(), textView_->textLayout().rowsRevision());
    if (std::exchange(gutterShows_, now) != now) {
        lineNumberView_->update();
    }
}

void EditorContainerView::scrollViewDidScroll()
{
    refreshGutter();
    // Keys that scroll nothing leave the map as it is.
    if (const QRectF visible = textView_->visibleRect(); visible != minimapView_->currentVisibleRect) {
        minimapView_->currentVisibleRect = visible;
        minimapView_->update();
    }
}

void EditorContainerView::focusEditorRequested()
{
    // Every open document has a container; the request is for the one that is seen.
    if (!isVisible()) {
        return;
    }
    textView_->setSelectedRange({0, 0});
    textView_->scrollRangeToVisible({0, 0});
    textView_->setFocus();
}

} // namespace kelm
