// The clipboard of a text view.
#include "text/view/text_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace kelm {

namespace {

/// Beside the plain text, the lengths of the texts of several selections, so that they come back into several.
const QString lengthsFormat = QStringLiteral("application/x-kelmwright-selections");

QMimeData* dataFor(const QStringList& texts)
{
    auto* data = new QMimeData;
    data->setText(texts.join(u'\n'));
    if (texts.size() > 1) {
        QByteArrayList lengths;
        for (const QString& text : texts) {
            lengths.append(QByteArray::number(text.size()));
        }
        data->setData(lengthsFormat, lengths.join(' '));
    }
    return data;
}

/// The text cut into its selections; as a whole where the lengths, which another program may have written, do not fit.
QStringList textsOf(const QMimeData& data)
{
    const QString text = data.text();
    if (!data.hasFormat(lengthsFormat)) {
        return {text};
    }
    QStringList texts;
    qsizetype at = 0;
    for (const QByteArray& number : data.data(lengthsFormat).split(' ')) {
        bool isNumber = false;
        const qsizetype length = number.toLongLong(&isNumber);
        const bool isCut = at == 0 || (at <= text.size() && text[at - 1] == u'\n');
        if (!isNumber || !isCut || length < 0 || length > text.size() - at) {
            return {text};
        }
        texts.append(text.mid(at, length));
        at += length + 1;
    }
    return at == text.size() + 1 ? texts : QStringList{text};
}

} // namespace

void TextView::copy()
{
    const QStringList texts = editor_.selectedTexts();
    if (!texts.isEmpty()) {
        QGuiApplication::clipboard()->setMimeData(dataFor(texts));
    }
}

void TextView::cut()
{
    commitComposition();
    // What is cut is what is taken away, in the text as the edit finds it.
    if (editor_.selections().hasText() && editor_.prepareEdit()) {
        copy();
        deleteSelection();
    }
}

void TextView::paste()
{
    commitComposition();
    const QMimeData* contents = QGuiApplication::clipboard()->mimeData();
    if (contents != nullptr && contents->hasText()) {
        editor_.paste(textsOf(*contents));
        showCaret();
    }
}

void TextView::pasteAt(const QString& text, qsizetype offset)
{
    editor_.apply({{{offset, 0}, TextTree(text)}}, EditKind::other);
    showCaret();
}

} // namespace kelm
