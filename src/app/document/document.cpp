#include "app/document/document.h"

#include "platform/files/file_url.h"

#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Whether two texts are equal; texts in one buffer are, without a look at them.
bool isSameText(const QString& a, const QString& b)
{
    return a.size() == b.size() && (a.constData() == b.constData() || a == b);
}

} // namespace

Document::Document(QString content, std::optional<QUrl> fileURL, std::optional<Language> explicitLanguage,
                   std::optional<LessonInfo> lessonInfo)
    : content_(std::move(content)),
      fileURL_(std::move(fileURL)),
      explicitLanguage_(explicitLanguage),
      lessonInfo_(std::move(lessonInfo))
{}

const QString& Document::content() const
{
    Q_ASSERT_X(!contentIsLent_, "Document::content", "the text is with an editor");
    return content_;
}

void Document::setContent(const QString& content)
{
    Q_ASSERT_X(!contentIsLent_, "Document::setContent", "the text is with an editor");
    // What a lender holds cannot be compared: its text counts as another.
    const bool differs = std::exchange(contentIsLent_, false) || !isSameText(content_, content);
    storeContent(content, differs);
}

void Document::lendContent()
{
    Q_ASSERT_X(!contentIsLent_, "Document::lendContent", "the text is lent already");
    content_ = QString();
    contentIsLent_ = true;
}

void Document::returnContent(const QString& text, bool changed)
{
    Q_ASSERT_X(contentIsLent_, "Document::returnContent", "the text was not lent");
    contentIsLent_ = false;
    storeContent(text, changed);
}

void Document::storeContent(const QString& content, bool differs)
{
    content_ = content;
    ++contentRevision_;
    Q_EMIT contentChanged();
    if (differs) {
        setIsModified(true);
    }
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
