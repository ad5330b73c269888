#include "app/document/document.h"

#include "platform/files/file_url.h"

#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

Document::Document(TextTree text, std::optional<QUrl> fileURL, std::optional<Language> explicitLanguage,
                   std::optional<LessonInfo> lessonInfo)
    : storedText_(std::move(text)),
      fileURL_(std::move(fileURL)),
      explicitLanguage_(explicitLanguage),
      lessonInfo_(std::move(lessonInfo))
{}

TextTree Document::text() const
{
    return storedText_ ? *storedText_ : editor_->wholeText();
}

void Document::setText(const TextTree& text)
{
    const bool differs = !(this->text() == text);
    storedText_ = text;
    isStoredTextOfFile_ = false;
    Q_EMIT contentChanged();
    if (differs) {
        setIsModified(true);
    }
}

void Document::takeFileText(const TextTree& text)
{
    storedText_ = text;
    isStoredTextOfFile_ = true;
    Q_EMIT contentChanged();
    setIsModified(false);
    noteTextOfFile();
}

void Document::setEditor(const DocumentEditor* editor)
{
    storedText_ = text();
    editor_ = editor;
    if (editor_ != nullptr) {
        storedText_.reset();
    }
}

void Document::noteEdit()
{
    Q_ASSERT_X(!storedText_, "Document::noteEdit", "the editor has not taken the text that was stored");
    Q_EMIT contentChanged();
    setIsModified(true);
}

TextTree Document::takeStoredText()
{
    Q_ASSERT_X(storedText_ && editor_ != nullptr, "Document::takeStoredText", "nothing is to be taken");
    return *std::exchange(storedText_, {});
}

void Document::setFileURL(const std::optional<QUrl>& fileURL)
{
    if (fileURL_ == fileURL) {
        return;
    }
    fileURL_ = fileURL;
    Q_EMIT fileURLChanged();
    Q_EMIT titleChanged();
    Q_EMIT languageChanged();
}

void Document::setIsModified(bool isModified)
{
    if (isModified_ == isModified) {
        return;
    }
    isModified_ = isModified;
    Q_EMIT isModifiedChanged();
    Q_EMIT titleChanged();
}

void Document::setCursorPosition(const CursorPosition& cursorPosition)
{
    if (cursorPosition_ == cursorPosition) {
        return;
    }
    cursorPosition_ = cursorPosition;
    Q_EMIT cursorPositionChanged();
}

void Document::setSelection(const std::optional<TextSelection>& selection)
{
    if (selection_ == selection) {
        return;
    }
    selection_ = selection;
    Q_EMIT selectionChanged();
}

void Document::setExplicitLanguage(std::optional<Language> explicitLanguage)
{
    if (explicitLanguage_ == explicitLanguage) {
        return;
    }
    explicitLanguage_ = explicitLanguage;
    Q_EMIT explicitLanguageChanged();
    Q_EMIT languageChanged();
}

void Document::setLessonInfo(const std::optional<LessonInfo>& lessonInfo)
{
    if (lessonInfo_ == lessonInfo) {
        return;
    }
    lessonInfo_ = lessonInfo;
    Q_EMIT lessonInfoChanged();
}

void Document::setEncoding(TextEncoding encoding)
{
    if (encoding_ == encoding) {
        return;
    }
    encoding_ = encoding;
    Q_EMIT encodingChanged();
}

void Document::setLineEnding(LineEnding lineEnding)
{
    if (lineEnding_ == lineEnding) {
        return;
    }
    lineEnding_ = lineEnding;
    Q_EMIT lineEndingChanged();
}

void Document::setIndentStyle(IndentStyle indentStyle)
{
    if (indentStyle_ == indentStyle) {
        return;
    }
    indentStyle_ = indentStyle;
    Q_EMIT indentStyleChanged();
}

QString Document::title() const
{
    const QString base = fileURL_ ? lastPathComponent(*fileURL_) : u"Untitled"_s;
    return isModified_ ? base + u" *"_s : base;
}

Language Document::language() const
{
    if (explicitLanguage_) {
        return *explicitLanguage_;
    }
    return fileURL_ ? Language::from(pathExtension(*fileURL_).toLower()) : Language(Language::plainText);
}

} // namespace kelm
