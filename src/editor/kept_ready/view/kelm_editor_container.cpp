#include "editor/kept_ready/view/kelm_editor_container.h"

#include "editor/view/editor_text.h"
#include "platform/style/view/style.h"
#include "text/storage/text_position.h"

#include <QResizeEvent>

#include <algorithm>

namespace kelm {

namespace {

/// What the text's box leaves of the view's width, and its least width; points.
constexpr qreal containerMargin = 10;
constexpr qreal leastContainerWidth = 100;

} // namespace

KelmEditorContainer::KelmEditorContainer(NotificationCenter& center, QWidget* parent)
    : QWidget(parent),
      textView_(new TextView(this)),
      lineNumberView_(new LineNumberView(center, this)),
      highlighter_(EditorTheme::monokai()),
      autoCompleteManager_(textView_),
      codeFoldingManager_(center),
      multiCursorManager_(textView_),
      selectionManager_(textView_)
{
    setUpEditorText(*textView_, {4, 8});
    textView_->setDelegate(this);
    codeFoldingManager_.setStorage(&textView_->storage());
    lineNumberView_->textView = textView_;
    lineNumberView_->codeFoldingManager = &codeFoldingManager_;
    // The text that is shown is another one then, and its colours and regions are those of that text.
    lineNumberView_->onFoldToggled = [this] { highlight(); };
    setFocusProxy(textView_);
    connect(textView_, &TextView::visibleRectChanged, lineNumberView_, qOverload<>(&QWidget::update));
    layOut();
}

KelmEditorContainer::~KelmEditorContainer()
{
    textView_->setDelegate(nullptr);
}

void KelmEditorContainer::setCurrentLanguage(Language language)
{
    currentLanguage_ = language;
    highlight();
}

void KelmEditorContainer::setShowLineNumbers(bool show)
{
    showLineNumbers_ = show;
    layOut();
}

void KelmEditorContainer::setTheme(const EditorTheme& theme)
{
    highlighter_.theme = theme;
    applyThemeColors(*textView_, theme);
    lineNumberView_->backgroundColor = theme.gutterColor.toColor();
    lineNumberView_->textColor = theme.lineNumberColor.toColor();
    highlight();
}

void KelmEditorContainer::setText(const QString& text)
{
    textView_->commitComposition();
    textView_->storage().setText(text);
    highlight();
}

void KelmEditorContainer::textDidChange()
{
    if (delegate) {
        delegate->textDidChange(textView_->text());
    }
    lineNumberView_->update();
}

void KelmEditorContainer::textViewDidChangeSelection()
{
    lineNumberView_->update();
    if (!delegate) {
        return;
    }
    const TextRange range = textView_->selectedRange();
    const CursorPosition start = positionAt(range.location);
    delegate->cursorDidChange(start);
    if (delegate) {
        delegate->selectionDidChange(range.isEmpty() ? std::nullopt
                                                     : std::optional(TextSelection{start, positionAt(range.end())}));
    }
}

void KelmEditorContainer::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void KelmEditorContainer::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        applySelectionColor(*textView_, style::appearanceOf(*this));
    }
    QWidget::changeEvent(event);
}

void KelmEditorContainer::layOut()
{
    const int left = showLineNumbers_ ? gutterWidth : 0;
    lineNumberView_->setVisible(showLineNumbers_);
    lineNumberView_->setGeometry(0, 0, left, height());
    textView_->setGeometry(left, 0, std::max(0, width() - left), height());
    textView_->setContainerWidth(
        std::max(leastContainerWidth, textView_->maximumViewportSize().width() - containerMargin));
}

void KelmEditorContainer::highlight()
{
    highlighter_.highlight(&textView_->storage(), currentLanguage_);
    codeFoldingManager_.detectFoldableRegions(currentLanguage_);
    lineNumberView_->update();
}

CursorPosition KelmEditorContainer::positionAt(qsizetype offset) const
{
    const LineAndColumn place = lineAndColumnAt(textView_->storage().tree(), offset);
    return {place.line, place.column, offset};
}

} // namespace kelm
