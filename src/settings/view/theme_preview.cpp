#include "settings/view/theme_preview.h"

#include "platform/style/view/style.h"
#include "platform/view/accessible_role.h"

#include <QPainter>
#include <QPainterPath>

#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int fontSize = 13;
constexpr int rowHeight = 20;
constexpr int padding = 14;
constexpr int numberWidth = 28;

struct Piece
{
    QString text;
    CodableColor EditorTheme::*color;
};

/// The sample, line by line.
const std::vector<std::vector<Piece>>& sample()
{
    using Theme = EditorTheme;
    static const std::vector<std::vector<Piece>> lines{
        {{u"// This is a comment"_s, &Theme::commentColor}},
        {{u"struct"_s, &Theme::keywordColor},
         {u" ContentView"_s, &Theme::typeColor},
         {u": "_s, &Theme::textColor},
         {u"View"_s, &Theme::typeColor},
         {u" {"_s, &Theme::textColor}},
        {{u"    var"_s, &Theme::keywordColor},
         {u" message"_s, &Theme::textColor},
         {u" = "_s, &Theme::textColor},
         {u"\"Hello World\""_s, &Theme::stringColor}},
        {{u"    let"_s, &Theme::keywordColor},
         {u" count"_s, &Theme::textColor},
         {u" = "_s, &Theme::textColor},
         {u"42"_s, &Theme::numberColor}},
        {{u"}"_s, &Theme::textColor}},
    };
    return lines;
}

} // namespace

ThemePreview::ThemePreview(EditorTheme theme, QWidget* parent) : QWidget(parent), theme_(std::move(theme))
{
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(tr("Preview"));
}

void ThemePreview::setTheme(const EditorTheme& theme)
{
    theme_ = theme;
    update();
}

QSize ThemePreview::sizeHint() const
{
    constexpr int width = 340;
    return {width, static_cast<int>(sample().size()) * rowHeight + 2 * padding};
}

void ThemePreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath box;
    box.addRoundedRect(QRectF(rect()), style::radius::control, style::radius::control);
    painter.fillPath(box, theme_.backgroundColor.toColor());
    painter.setClipPath(box);
    const QFont font = style::monospaced(fontSize);
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    int number = 1;
    int y = padding;
    for (const std::vector<Piece>& line : sample()) {
        painter.setPen(theme_.lineNumberColor.toColor());
        painter.drawText(QRect(padding, y, numberWidth - 10, rowHeight), Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(number));
        qreal x = padding + numberWidth;
        for (const Piece& piece : line) {
            painter.setPen((theme_.*piece.color).toColor());
            painter.drawText(QPointF(x, y + (rowHeight + metrics.ascent() - metrics.descent()) / 2), piece.text);
            x += metrics.horizontalAdvance(piece.text);
        }
        ++number;
        y += rowHeight;
    }
}

} // namespace kelm
