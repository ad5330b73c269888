// The clipboard of a text view.
#include "text/view/text_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace kelm {

namespace {

/// Beside the plain text, the text of each selection by itself, so that several come back into several.
const QString piecesFormat = QStringLiteral("application/x-kelmwright-selections");

QMimeData* dataFor(const QStringList& texts)
{
    auto* data = new QMimeData;
    data->setText(texts.join(u'\n'));
    if (texts.size() > 1) {
        QByteArray pieces;
        QDataStream stream(&pieces, QIODevice::WriteOnly);
        stream << texts;
        data->setData(piecesFormat, pieces);
    }
    return data;
}

QStringList textsOf(const QMimeData& data)
{
    if (data.hasFormat(piecesFormat)) {
        QDataStream stream(data.data(piecesFormat));
        QStringList texts;
        stream >> texts;
        if (stream.status() == QDataStream::Ok && texts.join(u'\n') == data.text()) {
            return texts;
        }
    }
    return {data.text()};
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
    if (!isReadOnly() && editor_.selections().hasText()) {
        commitComposition();
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

} // namespace kelm
