#include "platform/view/labels.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/view/accessible_role.h"
#include "platform/view/plain_help.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelm {

TextLabel::TextLabel(const QString& text, const QFont& font, const Tint& tint, QWidget* parent)
    : QWidget(parent), tint_(tint)
{
    setFont(font);
    setAccessibleRole(*this, QAccessible::StaticText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setText(text);
}

void TextLabel::setText(const QString& text)
{
    if (text == text_ && !text.isEmpty()) {
        return;
    }
    text_ = text;
    setAccessibleName(text);
    updateGeometry();
    updateHelp();
    update();
}

void TextLabel::setTint(const Tint& tint)
{
    tint_ = tint;
    update();
}

void TextLabel::setElideMode(Qt::TextElideMode mode)
{
    elideMode_ = mode;
    update();
}

void TextLabel::setAlignment(Qt::Alignment alignment)
{
    alignment_ = alignment;
    update();
}

void TextLabel::setGivesWay(bool givesWay)
{
    givesWay_ = givesWay;
    updateGeometry();
}

int TextLabel::textWidth() const
{
    return fontMetrics().horizontalAdvance(text_) + 1;
}

QSize TextLabel::sizeHint() const
{
    return {textWidth(), fontMetrics().height()};
}

QSize TextLabel::minimumSizeHint() const
{
    constexpr int fewLetters = 3;
    const int least = fontMetrics().averageCharWidth() * fewLetters;
    return {givesWay_ ? std::min(least, textWidth()) : textWidth(), fontMetrics().height()};
}

void TextLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(style::ink(tint_, *this));
    const QString shown = fontMetrics().elidedText(text_, elideMode_, width());
    painter.drawText(rect(), int(alignment_) | Qt::TextSingleLine, shown);
}

void TextLabel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    updateHelp();
}

void TextLabel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        updateGeometry();
        updateHelp();
    }
    QWidget::changeEvent(event);
}

void TextLabel::updateHelp()
{
    const bool isCut = width() > 0 && fontMetrics().horizontalAdvance(text_) > width();
    setToolTip(isCut ? plainHelp(text_) : QString());
}

struct WrappedLabel::Lines
{
    QString text;
    QFont font;
    Qt::Alignment alignment;
    int width = 0;
    QTextLayout layout;
    qreal height = 0;
};

WrappedLabel::WrappedLabel(const QString& text, const QFont& font, const Tint& tint, QWidget* parent)
    : QLabel(text, parent), tint_(tint)
{
    setTextFormat(Qt::PlainText);
    setFont(font);
    setWordWrap(true);
    refreshTint();
}

WrappedLabel::~WrappedLabel() = default;

void WrappedLabel::setTint(const Tint& tint)
{
    tint_ = tint;
    refreshTint();
}

bool WrappedLabel::isLong() const
{
    constexpr qsizetype longText = 1000;
    return text().size() > longText;
}

QSize WrappedLabel::sizeHint() const
{
    if (!isLong()) {
        return QLabel::sizeHint();
    }
    // The toolkit would try several widths. The height follows from the width that the label gets.
    constexpr int letters = 40;
    const qsizetype rows = text().size() / letters + 1;
    return {fontMetrics().averageCharWidth() * letters, static_cast<int>(rows) * fontMetrics().lineSpacing()};
}

QSize WrappedLabel::minimumSizeHint() const
{
    return {0, isLong() ? fontMetrics().lineSpacing() : heightForWidth(sizeHint().width())};
}

bool WrappedLabel::isLaidOut(const std::unique_ptr<Lines>& lines, int width) const
{
    return lines != nullptr && lines->width == width && lines->text == text() && lines->font == font() &&
           lines->alignment == alignment();
}

const WrappedLabel::Lines& WrappedLabel::layOut(int width) const
{
    if (isLaidOut(lines_[0], width)) {
        return *lines_[0];
    }
    std::swap(lines_[0], lines_[1]);
    if (isLaidOut(lines_[0], width)) {
        return *lines_[0];
    }
    lines_[0] = std::make_unique<Lines>();
    Lines& lines = *lines_[0];
    lines.text = text();
    lines.font = font();
    lines.alignment = alignment();
    lines.width = width;
    QTextOption option(alignment());
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    lines.layout.setText(text().replace(u'\n', QChar::LineSeparator));
    lines.layout.setFont(font());
    lines.layout.setTextOption(option);
    lines.layout.setCacheEnabled(true);
    lines.layout.beginLayout();
    for (QTextLine line = lines.layout.createLine(); line.isValid(); line = lines.layout.createLine()) {
        line.setLineWidth(std::max(1, width));
        line.setPosition({0, lines.height});
        lines.height += line.height();
    }
    lines.layout.endLayout();
    return lines;
}

int WrappedLabel::heightForWidth(int width) const
{
    const QMargins margins = contentsMargins();
    const Lines& lines = layOut(width - margins.left() - margins.right());
    return static_cast<int>(std::ceil(lines.height)) + margins.top() + margins.bottom();
}

void WrappedLabel::paintEvent(QPaintEvent* event)
{
    const QRect box = contentsRect();
    const Lines& lines = layOut(box.width());
    const bool isCentred = alignment().testFlag(Qt::AlignVCenter);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QPointF top(box.left(), box.top() + (isCentred ? (box.height() - lines.height) / 2 : 0));
    lines.layout.draw(&painter, top, {}, event->rect());
}

void WrappedLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        refreshTint();
    }
}

void WrappedLabel::refreshTint()
{
    // The colour of its text no longer tells the appearance once it has been tinted; that of the tool tips still does.
    const bool isDark = palette().color(QPalette::ToolTipText).lightness() > 127;
    const QColor color = style::ink(tint_, isDark ? Appearance::dark : Appearance::light);
    if (palette().color(QPalette::WindowText) != color) {
        QPalette tinted;
        tinted.setColor(QPalette::WindowText, color);
        setPalette(tinted);
    }
}

SymbolLabel::SymbolLabel(QString symbol, int size, const Tint& tint, QWidget* parent)
    : QWidget(parent), symbol_(std::move(symbol)), size_(size), tint_(tint)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolLabel::setSymbol(const QString& symbol)
{
    symbol_ = symbol;
    update();
}

void SymbolLabel::setTint(const Tint& tint)
{
    tint_ = tint;
    update();
}

void SymbolLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // On whole pixels, where symbols are crisp.
    const QRect box((width() - size_) / 2, (height() - size_) / 2, size_, size_);
    icons::paint(painter, symbol_, box, style::ink(tint_, *this));
}

} // namespace kelm
