#include "editor/view/kelm_editor_view.h"

#include "platform/events/main_queue.h"

#include <utility>

namespace kelm {

namespace {

/// What a title ends with while there are unsaved changes.
constexpr QStringView modifiedMark = u" *";

} // namespace

Coordinator::Coordinator(std::shared_ptr<Document> shown, KelmEditorView& owner)
    : document(std::move(shown)), owner_(owner)
{}

Coordinator::~Coordinator()
{
    if (view_ != nullptr) {
        textWillEnd();
    }
}

void Coordinator::bind(EditorContainerView& view)
{
    view_ = &view;
    view.setText(document->text());
    view.setDelegate(this);
    document->setEditor(this);
}

void Coordinator::textWillChange()
{
    owner_.updateText();
}

void Coordinator::textDidChange()
{
    document->noteEdit();
}

void Coordinator::textWillEnd()
{
    document->setEditor(nullptr);
    std::exchange(view_, nullptr)->setDelegate(nullptr);
}

TextTree Coordinator::wholeText() const
{
    return view_->wholeText();
}

void Coordinator::cursorPositionChanged(qsizetype line, qsizetype column)
{
    onMainQueue(this, [this, line, column] { document->setCursorPosition({line, column, 0}); });
}

KelmEditorView::KelmEditorView(std::shared_ptr<Document> document, ThemeManager& themeManager, QObject* parent)
    : QObject(parent), document_(std::move(document)), themeManager_(themeManager), coordinator_(document_, *this)
{
    connect(document_.get(), &Document::contentChanged, this, [this] {
        // What is typed is in the surface already.
        if (document_->hasStoredText()) {
            scheduleUpdate();
        }
    });
    connect(document_.get(), &Document::languageChanged, this, &KelmEditorView::scheduleUpdate);
    connect(document_.get(), &Document::lessonInfoChanged, this, &KelmEditorView::scheduleUpdate);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, &KelmEditorView::scheduleUpdate);
}

EditorContainerView* KelmEditorView::makeView(Scheduler& scheduler, NotificationCenter& notifications, QWidget* parent)
{
    view_ = new EditorContainerView(scheduler, notifications, parent);
    view_->setShowLineNumbers(showLineNumbers_);
    view_->setShowMinimap(showMinimap_);
    view_->setCurrentLanguage(document_->language());
    view_->setTheme(themeManager_.currentTheme());
    // An empty text too is one that later texts replace in a step of their own.
    coordinator_.bind(*view_);
    view_->setLessonRegion(lessonRegion());
    tellName();
    connect(document_.get(), &Document::titleChanged, this, &KelmEditorView::tellName);
    return view_;
}

void KelmEditorView::tellName()
{
    if (view_) {
        // The mark of unsaved changes is not said anew with the first change.
        QString title = document_->title();
        title.chop(document_->isModified() ? modifiedMark.size() : 0);
        const QString name = tr("Text of %1").arg(title);
        if (view_->textView().accessibleName() != name) {
            view_->textView().setAccessibleName(name);
        }
    }
}

void KelmEditorView::updateView()
{
    if (!view_) {
        return;
    }
    view_->setShowLineNumbers(showLineNumbers_);
    view_->setShowMinimap(showMinimap_);
    if (document_->language() != view_->currentLanguage()) {
        view_->setCurrentLanguage(document_->language());
    }
    if (!(themeManager_.currentTheme() == view_->theme())) {
        view_->setTheme(themeManager_.currentTheme());
    }
    updateText();
    if (lessonRegion() != view_->lessonRegion()) {
        view_->setLessonRegion(lessonRegion());
    }
}

void KelmEditorView::setShowLineNumbers(bool show)
{
    showLineNumbers_ = show;
    scheduleUpdate();
}

void KelmEditorView::setShowMinimap(bool show)
{
    showMinimap_ = show;
    scheduleUpdate();
}

void KelmEditorView::scheduleUpdate()
{
    if (isUpdateScheduled_) {
        return;
    }
    isUpdateScheduled_ = true;
    onMainQueue(this, [this] {
        isUpdateScheduled_ = false;
        updateView();
    });
}

void KelmEditorView::updateText()
{
    if (!view_ || !document_->hasStoredText()) {
        return;
    }
    const bool isTextOfFile = document_->isStoredTextOfFile();
    const TextTree stored = document_->takeStoredText();
    if (isTextOfFile) {
        view_->takeFileText(stored);
    } else if (!(view_->wholeText() == stored)) {
        view_->setText(stored);
    }
}

std::optional<LineRegion> KelmEditorView::lessonRegion() const
{
    const std::optional<LessonInfo>& lesson = document_->lessonInfo();
    const bool namesRegion = lesson && lesson->namesRegion;
    return namesRegion ? std::optional(LineRegion{lesson->regionStart, lesson->regionEnd}) : std::nullopt;
}

} // namespace kelm
