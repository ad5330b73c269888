#include "workbench/view/bottom_panel.h"

#include "platform/view/accessible_role.h"
#include "platform/view/plain_button.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int smallestHeight = 200;
constexpr int idealHeight = 280;
constexpr int largestHeight = 500;
constexpr int iconSize = 12;
constexpr int textSize = 12;
constexpr int closeTrailing = 8;
constexpr double stripOpacity = 0.1;

class BottomPanelStrip final : public QWidget
{
public:
    explicit BottomPanelStrip(QWidget* parent) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter(this).fillRect(rect(), Tint::secondary().at(stripOpacity).on(*this));
    }
};

} // namespace

BottomPanel::BottomPanel(AppState& appState, ThemeManager& themeManager, Pages pages, QWidget* parent)
    : QWidget(parent),
      appState_(appState),
      themeManager_(themeManager),
      pages_(std::move(pages)),
      stack_(new QStackedWidget(this))
{
    setMinimumHeight(smallestHeight);
    setMaximumHeight(largestHeight);
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(tr("Bottom panel"));
    auto* strip = new BottomPanelStrip(this);
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(0, 0, closeTrailing, 0);
    row->setSpacing(0);
    for (const BottomPanelTab tab : BottomPanelTab::allCases()) {
        auto* button = new PlainButton({.symbol = tab.iconName(),
                                        .symbolSize = iconSize,
                                        .textSize = textSize,
                                        .checkedTint = Tint::primary(),
                                        .padding = {12, 6, 12, 6},
                                        .spacing = 6,
                                        .cornerRadius = 0},
                                       strip);
        button->setText(tab.label());
        button->setCheckable(true);
        button->setAutoExclusive(true);
        connect(button, &PlainButton::toggled, this, [this, tab](bool isSelected) {
            if (isSelected) {
                appState_.setBottomPanelTab(tab);
            }
        });
        // A click leaves the keyboard where it is; in the terminal one goes on to type.
        connect(button, &PlainButton::clicked, this, [this, button] {
            if (!button->hasFocus()) {
                focusTerminal();
            }
        });
        buttons_.at(tab) = button;
        row->addWidget(button);
    }
    row->addStretch(1);
    closeButton_ = new PlainButton(
        {.symbol = u"xmark"_s, .symbolSize = 10, .hoveredTint = Tint::primary(), .fixedSize = {22, 22}}, strip);
    closeButton_->setHelp(tr("Close the panel"));
    connect(closeButton_, &PlainButton::clicked, this, [this] { appState_.setShowBottomPanel(false); });
    row->addWidget(closeButton_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(strip);
    column->addWidget(stack_, 1);
    connect(&appState_, &AppState::bottomPanelTabChanged, this, &BottomPanel::refreshTab);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    refreshTab();
}

QSize BottomPanel::sizeHint() const
{
    return {QWidget::sizeHint().width(), idealHeight};
}

QWidget* BottomPanel::content() const
{
    return contents_.at(appState_.bottomPanelTab());
}

void BottomPanel::focusTerminal()
{
    if (isVisible() && appState_.bottomPanelTab() == BottomPanelTab::terminal) {
        content()->setFocus();
    }
}

void BottomPanel::refreshTab()
{
    const BottomPanelTab selected = appState_.bottomPanelTab();
    for (const BottomPanelTab tab : BottomPanelTab::allCases()) {
        if (tab == selected) {
            buttons_.at(tab)->setChecked(true);
        }
        QWidget*& content = contents_.at(tab);
        if (tab != selected && content != nullptr && !pages_.at(tab).outlivesItsTab) {
            stack_->removeWidget(content);
            delete content;
            content = nullptr;
        }
    }
    QWidget*& content = contents_.at(selected);
    if (content == nullptr) {
        content = pages_.at(selected).make(stack_);
        stack_->addWidget(content);
    }
    stack_->setCurrentWidget(content);
}

void BottomPanel::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
}

} // namespace kelm
