// What one open document must hold.
#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>
#include <set>

namespace kelm::soak {

/// The text of one tab as it must be, changed by the same edits as the editor's and without a look at it, and the
/// texts that undo and redo may lead to.
///
/// How far one undo goes is the editor's business: it keeps runs of typing together. So the shadow keeps the text after
/// every single edit, and an undo must lead to one of those before, a redo to one of those behind. The same text may
/// stand in several places, so the place is a set of those that are possible.
class ShadowDocument
{
public:
    ShadowDocument(QString text, std::optional<QUrl> url);

    const QString& text() const { return states_.at(*places_.rbegin()); }
    /// A number that no other document of the run has.
    quint64 id() const { return id_; }

    std::optional<QUrl> url;
    bool isModified = false;
    /// What the file holds; of a document without a file, its first text. Nothing when the file has gone or is no text.
    std::optional<QString> fileText;

    /// The text was written to its file.
    void saved();
    /// Whether it is in no file: then it has to be in the store.
    bool isUnsaved() const { return isModified && text() != fileText; }
    /// The same document in another editor, which has nothing to undo.
    ShadowDocument reopened() const;

    /// An edit by the user that can be undone.
    void edited(const QString& text);

    /// Whether the text that an undo, which had something to take back, led to can be right; the shadow follows.
    bool undone(const QString& text) { return moved(text, false); }
    bool redone(const QString& text) { return moved(text, true); }

private:
    bool moved(const QString& text, bool ahead);

    quint64 id_;
    QList<QString> states_;
    std::set<qsizetype> places_;
    /// Whether states at the front were forgotten.
    bool isTrimmed_ = false;
};

} // namespace kelm::soak
