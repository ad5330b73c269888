#include "platform/view/plain_help.h"

#include <QTextDocument>

#include <algorithm>

namespace kelm {

namespace {

/// A tool tip of plain text is as wide as its longest line, which may be wider than the screen; one of markup wraps.
constexpr qsizetype mostUnitsInLine = 120;

bool hasLineToWrap(const QString& text)
{
    const QList<QStringView> lines = QStringView(text).split(u'\n');
    return std::any_of(lines.begin(), lines.end(),
                       [](QStringView line) { return line.size() > mostUnitsInLine && line.contains(u' '); });
}

} // namespace

QString plainHelp(const QString& text)
{
    if (!Qt::mightBeRichText(text) && !hasLineToWrap(text)) {
        return text;
    }
    return QStringLiteral("<span style=\"white-space:pre-wrap\">%1</span>").arg(text.toHtmlEscaped());
}

} // namespace kelm
