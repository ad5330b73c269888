// One open text buffer: the unit behind one tab.
#pragma once

#include "app/document/text_attributes.h"
#include "app/language/language.h"
#include "learning/lesson_info.h"
#include "text/storage/text_tree.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>
#include <utility>

namespace kelm {

/// Where the text of a document is while it is edited.
class DocumentEditor
{
public:
    virtual ~DocumentEditor() = default;

    /// The document's text as it stands, whatever of it is shown.
    virtual TextTree wholeText() const = 0;
};

/// The whole text of one tab, where it came from, whether it has unsaved edits, and what the status bar shows of it.
///
/// It reads and writes no file. Every property has a signal that tells of a change just after it; views keep no copy.
/// Whoever holds a document shares it (`std::shared_ptr`), and it ends with its last holder. Main thread only.
///
/// **Where the text is.** An editor that shows the document owns its text: it is drawn from there when someone asks
/// for it, and at a key the document learns that it changed, not what it says. A text that is stored in the document
/// from elsewhere waits in it until the editor takes it.
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
    Document(const QString& content, std::optional<QUrl> fileURL, std::optional<Language> explicitLanguage,
             std::optional<LessonInfo> lessonInfo)
        : Document(TextTree(content), std::move(fileURL), explicitLanguage, std::move(lessonInfo))
    {}
    Document(TextTree text, std::optional<QUrl> fileURL, std::optional<Language> explicitLanguage,
             std::optional<LessonInfo> lessonInfo);

    /// Identity of the document in lists of tabs.
    QUuid id() const { return id_; }

    /// The full text: a snapshot that costs next to nothing and stays as it is.
    TextTree text() const;
    /// The same as one string: a copy, linear in the text.
    QString content() const { return text().toString(); }

    /// Stores a text and sets `isModified` when it differs from the old one by value; storing the same text leaves the
    /// flag as it was.
    void setText(const TextTree& text);
    void setContent(const QString& content) { setText(TextTree(content)); }

    /// Stores the text that the document's file has now: the document is not modified then.
    void takeFileText(const TextTree& text);
    /// Tells that the document's file holds its text by now, as another program wrote it too.
    void noteTextOfFile() { Q_EMIT textIsOfFile(); }
    /// Tells that the document's file holds `text` by now, which is not the document's; nothing for a file that has
    /// gone or cannot be read.
    void noteOtherTextInFile(const std::optional<TextTree>& text) { Q_EMIT otherTextIsInFile(text); }

    /// From now on `editor`, which has the text that the document has, keeps it; none when it is done, whose text the
    /// document then keeps itself. The editor outlives its time here.
    void setEditor(const DocumentEditor* editor);
    /// The editor's text has changed. Tells observers, and then sets `isModified`.
    void noteEdit();
    /// Whether a text was stored that the editor has not taken.
    bool hasStoredText() const { return storedText_.has_value(); }
    /// Whether that is the text of the file, which another program changed: whoever looks at the text goes on with what
    /// is left of it.
    bool isStoredTextOfFile() const { return isStoredTextOfFile_; }
    /// The stored text, which from now on the editor keeps.
    TextTree takeStoredText();

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
    /// The file holds the text, and the program has not written it.
    void textIsOfFile();
    /// The file holds `text`, if any, and not the document's.
    void otherTextIsInFile(const std::optional<kelm::TextTree>& text);
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
    const QUuid id_ = QUuid::createUuid();
    const DocumentEditor* editor_ = nullptr;
    /// The text where no editor has it, or what was stored since.
    std::optional<TextTree> storedText_;
    std::optional<QUrl> fileURL_;
    std::optional<Language> explicitLanguage_;
    std::optional<LessonInfo> lessonInfo_;
    CursorPosition cursorPosition_;
    std::optional<TextSelection> selection_;
    IndentStyle indentStyle_ = IndentStyle::spaces(4);
    TextEncoding encoding_ = TextEncoding::utf8;
    LineEnding lineEnding_ = LineEnding::lf;
    bool isModified_ = false;
    bool isStoredTextOfFile_ = false;
};

} // namespace kelm
