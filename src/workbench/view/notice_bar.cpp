#include "workbench/view/notice_bar.h"

#include "platform/style/view/style.h"
#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "platform/view/activity_line.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QResizeEvent>

#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// As high, and with the same ends, as the status bar below.
constexpr int barHeight = 26;
constexpr int endPadding = 14;
constexpr int spacing = 16;
constexpr int lineHeight = 2;
constexpr int textSize = 11;
constexpr double edgeOpacity = 0.05;
constexpr int whole = 100;
constexpr int step = 10;

QString withPercents(const QString& text, int percents)
{
    return u"%1 %2 %"_s.arg(text, QString::number(percents));
}

} // namespace

NoticeBar::NoticeBar(ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent),
      themeManager_(themeManager),
      activity_(new ActivityLine(this)),
      label_(new TextLabel({}, style::interfaceFont(textSize), Tint::primary().at(0.85), this)),
      stopHint_(new TextLabel(tr("Escape to stop"), style::interfaceFont(textSize), Tint::secondary(), this)),
      row_(new QHBoxLayout(this)),
      putAway_(new PlainButton({.symbol = u"xmark"_s, .symbolSize = 9, .padding = {5, 4, 5, 4}}, this))
{
    setFixedHeight(barHeight);
    setAccessibleRole(*this, QAccessible::AlertMessage);
    label_->setElideMode(Qt::ElideMiddle);
    stopHint_->setGivesWay(false);
    putAway_->setHelp(tr("Dismiss"));
    connect(putAway_, &PlainButton::clicked, this, &NoticeBar::putAway);
    row_->setContentsMargins(endPadding, 1, endPadding, 0);
    row_->setSpacing(spacing);
    row_->addWidget(label_, 1);
    row_->addWidget(stopHint_);
    row_->addWidget(putAway_);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
}

void NoticeBar::show(const Notice& notice)
{
    notice_ = notice.text;
    isNews_ = notice.isNews;
    progress_ = notice.progress;
    time_ = notice.time;
    stopHint_->setVisible(bool(notice.stop));
    showOffers(notice.offers);
    putAway_->setVisible(notice.isNews);
    refresh();
    setVisible(true);
    announce(*this);
}

void NoticeBar::showOffers(const std::vector<NoticeOffer>& offers)
{
    for (PlainButton* button : offers_) {
        // One of them may just have been pressed.
        button->hide();
        button->deleteLater();
    }
    offers_.clear();
    for (const NoticeOffer& offer : offers) {
        ButtonLook look = borderedLook();
        look.textSize = textSize;
        look.padding = {8, 1, 8, 1};
        auto* button = new PlainButton(look, this);
        button->setText(offer.label);
        const auto index = std::ssize(offers_);
        connect(button, &PlainButton::clicked, this, [this, index] { Q_EMIT accepted(index); });
        row_->insertWidget(row_->indexOf(putAway_), button);
        offers_.push_back(button);
    }
}

void NoticeBar::setProgress(std::optional<double> progress, std::optional<std::chrono::seconds> time)
{
    progress_ = progress;
    time_ = time;
    refresh();
}

QString NoticeBar::text() const
{
    return label_->text();
}

bool NoticeBar::offersStop() const
{
    return !stopHint_->isHidden();
}

void NoticeBar::refresh()
{
    const int percents = progress_ ? int(*progress_ * whole) : 0;
    const QString lasting = time_ ? tr("%1, %2 s").arg(notice_, QString::number(time_->count())) : notice_;
    label_->setText(progress_ ? withPercents(lasting, percents) : lasting);
    // Each second or percent, read out, would be talked over by the next.
    const QString spoken = progress_ ? withPercents(notice_, percents / step * step) : notice_;
    setAccessibleName(offersStop() ? spoken + u" "_s + stopHint_->text() : spoken);
    activity_->setActive(!isNews_ && !progress_ && isVisible());
    update();
}

void NoticeBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    activity_->setGeometry(0, 0, width(), lineHeight);
}

void NoticeBar::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    activity_->setActive(!isNews_ && !progress_);
}

void NoticeBar::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    activity_->setActive(false);
}

void NoticeBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
    painter.fillRect(QRect(0, 0, width(), 1), Tint::primary().at(edgeOpacity).on(*this));
    if (progress_) {
        painter.fillRect(QRectF(0, 0, width() * *progress_, lineHeight), Tint::accent().on(*this));
    }
}

} // namespace kelm
