#include "platform/view/plain_help.h"

#include <QTextDocument>

namespace kelm {

QString plainHelp(const QString& text)
{
    if (!Qt::mightBeRichText(text)) {
        return text;
    }
    return QStringLiteral("<span style=\"white-space:pre-wrap\">%1</span>").arg(text.toHtmlEscaped());
}

} // namespace kelm
