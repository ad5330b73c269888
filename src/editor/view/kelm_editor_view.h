// Binds a document to its editing surface.
#pragma once

#include "app/document/document.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"

#include <QObject>
#include <QPointer>

#include <memory>

namespace kelm {

/// The container's delegate: what is typed reaches the document through it.
class Coordinator final : public QObject, public EditorContainerDelegate
{
public:
    explicit Coordinator(std::shared_ptr<Document> shown, QObject* parent = nullptr);

    std::shared_ptr<Document> document;

    /// The document's content that the view last showed or sent.
    quint64 exchangedRevision() const { return exchangedRevision_; }
    void noteExchange() { exchangedRevision_ = document->contentRevision(); }

    // EditorContainerDelegate
    void textWillChange() override;
    void textDidChange(const QString& text) override;
    void cursorPositionChanged(qsizetype line, qsizetype column) override;

private:
    quint64 exchangedRevision_ = 0;
};

/// The bridge between a document, the theme and an editing surface. Whatever of them changes, the surface is updated
/// once for all changes of one event; an update that would change nothing costs nothing.
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
    void scheduleUpdate();
    void updateText();
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
