// One open text buffer: the unit behind one tab.
#pragma once

#include "app/document/text_attributes.h"
#include "app/language/language.h"
#include "learning/lesson_info.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace kelm {

/// The whole text of one tab, where it came from, whether it has unsaved edits, and what the status bar shows of it.
///
/// It reads and writes no file. Every property has a signal that tells of a change just after it; views keep no copy.
/// Whoever holds a document shares it (`std::shared_ptr`), and it ends with its last holder. Main thread only.
///
/// **How the text travels.** `content` shares its buffer with whoever reads it. An editor that edits its own text in
/// place would then pay a copy of the whole text on every key, since the document is the buffer's second owner. Such an
/// editor brackets its edit: `lendContent()` makes the document let go of the buffer, `returnContent()` gives it back.
/// `contentRevision()` tells a bound view in no time whether it has seen the text.
class Document : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QUuid id READ id CONSTANT)
    Q_PROPERTY(QString content READ content WRITE setContent NOTIFY contentChanged)
    Q_PROPERTY(std::optional<QUrl> fileURL READ fileURL WRITE setFileURL NOTIFY fileURLChanged)
    Q_PROPERTY(bool isModified READ isModified WRITE setIsModified NOTIFY isModifiedChanged)
    Q_PROPERTY(
        kelm::CursorPosition cursorPosition READ cursorPosition WRITE setCursorPosition NOTIFY cursorPositionChanged)
    Q_PROPERTY(std::optional<kelm::TextSelection> selection READ selection WRITE setSelection NOTIFY selectionChanged)
    Q_PROPERTY(std::optional<kelm::Language> explicitLanguage READ explicitLanguage WRITE setExplicitLanguage NOTIFY
                   explicitLanguageChanged)
    Q_PROPERTY(std::optional<kelm::LessonInfo> lessonInfo READ lessonInfo WRITE setLessonInfo NOTIFY lessonInfoChanged)
    Q_PROPERTY(kelm::TextEncoding encoding READ encoding WRITE setEncoding NOTIFY encodingChanged)
    Q_PROPERTY(kelm::LineEnding lineEnding READ lineEnding WRITE setLineEnding NOTIFY lineEndingChanged)
    Q_PROPERTY(kelm::IndentStyle indentStyle READ indentStyle WRITE setIndentStyle NOTIFY indentStyleChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(kelm::Language language READ language NOTIFY languageChanged)

public:
    /// A document that is not modified, whatever its text. The text is taken as it stands, with its line terminators.
    Document(QString content, std::optional<QUrl> fileURL, std::optional<Language> explicitLanguage,
             std::optional<LessonInfo> lessonInfo);

    /// Identity of the document in lists of tabs.
    QUuid id() const { return id_; }

    /// The full text. Not to be read between `lendContent` and `returnContent`.
    const QString& content() const;

    /// Stores `content` and sets `isModified` when it differs from the old text by value; storing the same text leaves
    /// the flag as it was. Texts that share one buffer are compared in constant time.
    void setContent(const QString& content);

    /// Lets go of the document's own reference to the text, just before an editor edits the shared buffer in place.
    void lendContent();

    /// Takes back what `lendContent` let go of: `text` shares the editor's buffer, `changed` says whether it differs by
    /// value from the text that was lent. Tells observers, and then sets `isModified` when `changed`.
    void returnContent(const QString& text, bool changed);

    /// Whether the text is with an editor right now.
    bool isContentLent() const { return contentIsLent_; }

    /// How often content was stored; grows with each store, that of an equal text included.
    quint64 contentRevision() const { return contentRevision_; }

    /// The file that the text is saved to; absent when it was never saved.
    const std::optional<QUrl>& fileURL() const { return fileURL_; }
    void setFileURL(const std::optional<QUrl>& fileURL);

    bool isModified() const { return isModified_; }
    void setIsModified(bool isModified);

    const CursorPosition& cursorPosition() const { return cursorPosition_; }
    void setCursorPosition(const CursorPosition& cursorPosition);

    const std::optional<TextSelection>& selection() const { return selection_; }
    void setSelection(const std::optional<TextSelection>& selection);

    /// A language chosen by a person or a lesson; it goes before that of the file name.
    const std::optional<Language>& explicitLanguage() const { return explicitLanguage_; }
    void setExplicitLanguage(std::optional<Language> explicitLanguage);

    const std::optional<LessonInfo>& lessonInfo() const { return lessonInfo_; }
    void setLessonInfo(const std::optional<LessonInfo>& lessonInfo);

    /// The status bar's labels: they neither convert `content` nor play a part in saving it.
    TextEncoding encoding() const { return encoding_; }
    void setEncoding(TextEncoding encoding);
    LineEnding lineEnding() const { return lineEnding_; }
    void setLineEnding(LineEnding lineEnding);
    IndentStyle indentStyle() const { return indentStyle_; }
    void setIndentStyle(IndentStyle indentStyle);

    /// The last path component of the URL, or "Untitled", and " *" after it while there are unsaved edits.
    QString title() const;

    /// The explicit language, or else that of the URL's path extension, or else `plainText`.
    Language language() const;

Q_SIGNALS:
    void contentChanged();
    void fileURLChanged();
    void isModifiedChanged();
    void cursorPositionChanged();
    void selectionChanged();
    void explicitLanguageChanged();
    void lessonInfoChanged();
    void encodingChanged();
    void lineEndingChanged();
    void indentStyleChanged();
    /// Sent when a field changed from which `title` or `language` is computed.
    void titleChanged();
    void languageChanged();

private:
    void storeContent(const QString& content, bool differs);

    const QUuid id_ = QUuid::createUuid();
    QString content_;
    std::optional<QUrl> fileURL_;
    std::optional<Language> explicitLanguage_;
    std::optional<LessonInfo> lessonInfo_;
    CursorPosition cursorPosition_;
    std::optional<TextSelection> selection_;
    IndentStyle indentStyle_ = IndentStyle::spaces(4);
    quint64 contentRevision_ = 0;
    TextEncoding encoding_ = TextEncoding::utf8;
    LineEnding lineEnding_ = LineEnding::lf;
    bool isModified_ = false;
    bool contentIsLent_ = false;
};

} // namespace kelm
