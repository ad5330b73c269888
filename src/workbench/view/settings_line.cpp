#include "workbench/view/settings_line.h"

#include "app/state/notices.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int lineHeight = 26;
constexpr int endPadding = 14;
constexpr int textSize = 11;
constexpr double edgeOpacity = 0.1;

} // namespace

const QString& SettingsLine::storedWords()
{
    static const QString words = u"Stored. This version does not use it yet."_s;
    return words;
}

SettingsLine::SettingsLine(Notices& notices, QWidget* settings) : QWidget(settings), notices_(notices)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(storedWords());
    settings->installEventFilter(this);
    connect(&notices_, &Notices::currentChanged, this, &SettingsLine::follow);
    place();
    follow();
}

void SettingsLine::follow()
{
    const Notice* const notice = notices_.current();
    setVisible(notice != nullptr && notice->text == storedWords());
    raise();
}

void SettingsLine::place()
{
    const QRect around = parentWidget()->rect();
    setGeometry(0, around.height() - lineHeight, around.width(), lineHeight);
}

bool SettingsLine::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}

void SettingsLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Tint(SystemColor::windowBackground).on(*this));
    painter.fillRect(QRect(0, 0, width(), 1), Tint::primary().at(edgeOpacity).on(*this));
    painter.setFont(style::interfaceFont(textSize));
    painter.setPen(Tint::primary().on(*this));
    painter.drawText(rect().adjusted(endPadding, 1, -endPadding, 0), Qt::AlignVCenter | Qt::TextSingleLine,
                     storedWords());
}

} // namespace kelm
