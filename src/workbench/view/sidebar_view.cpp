#include "workbench/view/sidebar_view.h"

#include "platform/view/accessible_role.h"
#include "platform/view/divider.h"
#include "platform/view/plain_button.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace kelm {

namespace {

constexpr int smallestWidth = 220;
constexpr int idealWidth = 260;
constexpr int largestWidth = 420;
/// With the line below it as high as the strip of tabs beside it.
constexpr int barHeight = 39;
constexpr int iconSize = 16;
constexpr QSize buttonSize(36, 30);
constexpr double barOpacity = 0.05;

/// The strip behind the tabs.
class SidebarBar final : public QWidget
{
public:
    explicit SidebarBar(QWidget* parent) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter(this).fillRect(rect(), Tint::secondary().at(barOpacity).on(*this));
    }
};

} // namespace

SidebarView::SidebarView(ThemeManager& themeManager, MakeContent makeContent, QWidget* parent)
    : QWidget(parent),
      themeManager_(themeManager),
      makeContent_(std::move(makeContent)),
      pages_(new QStackedWidget(this))
{
    setMinimumWidth(smallestWidth);
    setMaximumWidth(largestWidth);
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(tr("Sidebar"));
    auto* bar = new SidebarBar(this);
    bar->setFixedHeight(barHeight);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(8, 0, 8, 0);
    row->setSpacing(4);
    for (const SidebarTab tab : SidebarTab::allCases()) {
        auto* button = new PlainButton(
            {.symbol = tab.iconName(), .symbolSize = iconSize, .checkedTint = Tint::accent(), .fixedSize = buttonSize},
            bar);
        button->setHelp(tab.helpLabel());
        button->setCheckable(true);
        button->setAutoExclusive(true);
        connect(button, &PlainButton::toggled, this, [this, tab](bool isSelected) {
            if (isSelected && tab != selectedTab_) {
                select(tab);
            }
        });
        // By the arrow keys one goes on along the row.
        connect(button, &PlainButton::clicked, this, [this, tab] {
            if (tab == SidebarTab::search) {
                content()->setFocus(Qt::OtherFocusReason);
            }
        });
        button->installEventFilter(this);
        buttons_.at(tab) = button;
        row->addWidget(button);
    }
    row->addStretch(1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(bar);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(pages_, 1);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    showContent();
}

QSize SidebarView::sizeHint() const
{
    return {idealWidth, QWidget::sizeHint().height()};
}

void SidebarView::select(SidebarTab tab)
{
    selectedTab_ = tab;
    showContent();
}

bool SidebarView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto button = std::find(buttons_.begin(), buttons_.end(), watched);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isForwards = key == Qt::Key_Down || key == (isLeftToRight() ? Qt::Key_Right : Qt::Key_Left);
    const bool isBackwards = key == Qt::Key_Up || key == (isLeftToRight() ? Qt::Key_Left : Qt::Key_Right);
    if (button == buttons_.end() || (!isForwards && !isBackwards)) {
        return QWidget::eventFilter(watched, event);
    }
    const auto at = button - buttons_.begin();
    const auto next = std::clamp<std::ptrdiff_t>(at + (isForwards ? 1 : -1), 0, std::ssize(buttons_) - 1);
    select(SidebarTab::allCases()[std::size_t(next)]);
    buttons_[std::size_t(next)]->setFocus(isForwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void SidebarView::showContent()
{
    for (const SidebarTab tab : SidebarTab::allCases()) {
        buttons_.at(tab)->setChecked(tab == selectedTab_);
    }
    QWidget*& content = contents_.at(selectedTab_);
    if (content == nullptr) {
        content = makeContent_(selectedTab_, pages_);
        pages_->addWidget(content);
    }
    pages_->setCurrentWidget(content);
    // The stack of pages passes the keyboard on to a page that has nothing to do with it.
    if (content->hasFocus() && content->focusPolicy() == Qt::NoFocus) {
        buttons_.at(selectedTab_)->setFocus(Qt::OtherFocusReason);
    }
}

void SidebarView::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
}

} // namespace kelm
