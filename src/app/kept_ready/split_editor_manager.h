// Several editors beside each other.
#pragma once

#include "app/document/document.h"

#include <QList>
#include <QObject>
#include <QUuid>

#include <memory>

namespace kelm {

/// How the panes are arranged. No operation sets `grid` yet.
enum class SplitLayout { single, horizontal, vertical, grid };

/// One editor with its document. Panes are told apart by identity.
class EditorPane final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QUuid id READ id CONSTANT)
    Q_PROPERTY(std::shared_ptr<kelm::Document> document READ document WRITE setDocument NOTIFY documentChanged)

public:
    explicit EditorPane(std::shared_ptr<Document> document);

    QUuid id() const { return id_; }
    const std::shared_ptr<Document>& document() const { return document_; }
    void setDocument(std::shared_ptr<Document> document);

Q_SIGNALS:
    void documentChanged();

private:
    const QUuid id_ = QUuid::createUuid();
    std::shared_ptr<Document> document_;
};

/// The panes in their order, the active one and the arrangement. A split pane has a buffer of its own: edits of the
/// same file in two panes are not shared. Kept ready: the program's window shows one editor. Main thread only.
class SplitEditorManager final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<std::shared_ptr<kelm::EditorPane>> editors READ editors WRITE setEditors NOTIFY editorsChanged)
    Q_PROPERTY(std::shared_ptr<kelm::EditorPane> activeEditor READ activeEditor WRITE setActiveEditor NOTIFY
                   activeEditorChanged)
    Q_PROPERTY(kelm::SplitLayout layout READ layout WRITE setLayout NOTIFY layoutChanged)

public:
    using QObject::QObject;

    const QList<std::shared_ptr<EditorPane>>& editors() const { return editors_; }
    void setEditors(const QList<std::shared_ptr<EditorPane>>& editors);
    /// None where it is null.
    const std::shared_ptr<EditorPane>& activeEditor() const { return activeEditor_; }
    void setActiveEditor(const std::shared_ptr<EditorPane>& activeEditor);
    SplitLayout layout() const { return layout_; }
    void setLayout(SplitLayout layout);

    /// Open a pane with a copy of the document right after the source and make it the active one. The source is `from`,
    /// else the active pane, else the first; without any nothing happens.
    void splitHorizontally(const std::shared_ptr<EditorPane>& from = nullptr);
    void splitVertically(const std::shared_ptr<EditorPane>& from = nullptr);
    /// Closes a pane of the list; the last one stays. When the active one goes, the first one takes its place.
    void closePane(const std::shared_ptr<EditorPane>& pane);

Q_SIGNALS:
    void editorsChanged();
    void activeEditorChanged();
    void layoutChanged();

private:
    void split(const std::shared_ptr<EditorPane>& from, SplitLayout layout);

    QList<std::shared_ptr<EditorPane>> editors_;
    std::shared_ptr<EditorPane> activeEditor_;
    SplitLayout layout_ = SplitLayout::single;
};

} // namespace kelm
