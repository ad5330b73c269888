// Binds a document to its editing surface.
#pragma once

#include "app/document/document.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"

#include <QObject>
#include <QPointer>

#include <memory>

namespace kelm {

class KelmEditorView;

/// The container's delegate: the document has its text from the container, and hears through it of what is typed.
class Coordinator final : public EditorContainerDelegate, public DocumentEditor
{
public:
    Coordinator(std::shared_ptr<Document> shown, KelmEditorView& owner);
    ~Coordinator() override;

    std::shared_ptr<Document> document;

    /// The container has the document's text from now on.
    void bind(EditorContainerView& view);

    // EditorContainerDelegate
    void textWillChange() override;
    void textDidChange() override;
    void textWillEnd() override;
    void cursorPositionChanged(qsizetype line, qsizetype column) override;

    // DocumentEditor
    TextTree wholeText() const override;

private:
    KelmEditorView& owner_;
    EditorContainerView* view_ = nullptr;
};

/// The bridge between a document, the theme and an editing surface. Whatever of them changes, the surface is updated
/// once for all changes of one event. An update lays the surface's parts out and has its map painted anew; beyond that,
/// one that would change nothing costs nothing.
class KelmEditorView final : public QObject
{
    Q_OBJECT

public:
    KelmEditorView(std::shared_ptr<Document> document, ThemeManager& themeManager, QObject* parent = nullptr);

    const std::shared_ptr<Document>& document() const { return document_; }

    void setShowLineNumbers(bool show);
    void setShowMinimap(bool show);

    /// Makes the surface and shows the document in it. To be called once.
    EditorContainerView* makeView(Scheduler& scheduler, NotificationCenter& notifications, QWidget* parent);
    /// Brings the surface up to what document and theme are now.
    void updateView();
    EditorContainerView* view() const { return view_; }

private:
    friend Coordinator;

    void scheduleUpdate();
    /// Shows a text that was stored in the document.
    void updateText();
    /// Says to screen readers whose text it is.
    void tellName();
    std::optional<LineRegion> lessonRegion() const;

    std::shared_ptr<Document> document_;
    ThemeManager& themeManager_;
    Coordinator coordinator_;
    QPointer<EditorContainerView> view_;
    bool showLineNumbers_ = true;
    bool showMinimap_ = true;
    bool isUpdateScheduled_ = false;
};

} // namespace kelm
