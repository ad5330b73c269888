#include "workbench/view/recent_file_button.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/text/shown_name.h"
#include "platform/view/mnemonics.h"
#include "platform/view/plain_help.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QPainter>

namespace kelm {

namespace {

constexpr int symbolSize = 16;
constexpr int padding = 6;
constexpr int spacing = 8;
constexpr int lineGap = 2;

QFont nameFont()
{
    return style::interfaceFont(style::typeSize::body);
}

QFont folderFont()
{
    return style::interfaceFont(style::typeSize::caption);
}

bool isReturn(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

RecentFileButton::RecentFileButton(const QUrl& url, QWidget* parent) : QAbstractButton(parent)
{
    const QFileInfo file(url.toLocalFile());
    name_ = shownName(file.fileName());
    setText(withoutMnemonic(name_));
    folder_ = shownName(file.path());
    setAccessibleDescription(folder_);
    setToolTip(plainHelp(shownName(file.filePath())));
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize RecentFileButton::sizeHint() const
{
    const QFontMetrics name(nameFont());
    const QFontMetrics folder(folderFont());
    const int width = std::max(name.horizontalAdvance(name_), folder.horizontalAdvance(folder_));
    return {2 * padding + symbolSize + spacing + width + 1, 2 * padding + name.height() + lineGap + folder.height()};
}

void RecentFileButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Tint::primary().at(isDown() ? style::pressedOpacity : style::hoverOpacity).on(*this));
        painter.drawRoundedRect(rect(), style::radius::control, style::radius::control);
    }
    icons::paint(painter, QStringLiteral("doc"), QRectF(padding, (height() - symbolSize) / 2.0, symbolSize, symbolSize),
                 Tint::secondary().on(*this));

    const QFontMetrics name(nameFont());
    const QFontMetrics folder(folderFont());
    const int left = padding + symbolSize + spacing;
    const int room = width() - left - padding + 1;
    painter.setPen(Tint::primary().on(*this));
    painter.setFont(nameFont());
    painter.drawText(QRect(left, padding, room, name.height()), Qt::AlignVCenter | Qt::TextSingleLine,
                     name.elidedText(name_, Qt::ElideMiddle, room));
    painter.setPen(Tint::secondary().on(*this));
    painter.setFont(folderFont());
    painter.drawText(QRect(left, padding + name.height() + lineGap, room, folder.height()),
                     Qt::AlignVCenter | Qt::TextSingleLine, folder.elidedText(folder_, Qt::ElideMiddle, room));
    if (hasFocus()) {
        style::drawFocusRing(painter, QRectF(rect()), style::radius::control, *this);
    }
}

void RecentFileButton::keyPressEvent(QKeyEvent* event)
{
    if (!isReturn(*event)) {
        QAbstractButton::keyPressEvent(event);
    } else if (!event->isAutoRepeat()) {
        setDown(true);
    }
}

void RecentFileButton::keyReleaseEvent(QKeyEvent* event)
{
    if (!isReturn(*event)) {
        QAbstractButton::keyReleaseEvent(event);
    } else if (!event->isAutoRepeat() && isDown()) {
        // As with the space bar: the file that opens is not to have the rest of a key that is held down.
        setDown(false);
        click();
    }
}

} // namespace kelm
