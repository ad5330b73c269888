// The bar of the source control panel's tabs.
#pragma once

#include "git/panel/source_control_tab.h"
#include "platform/view/focus_ring.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QWidget>

#include <array>

namespace kelm {

/// One tab: its symbol, its label, and how many things it holds. A count of 0 is not shown.
class SourceControlTabButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit SourceControlTabButton(SourceControlTab tab, QWidget* parent = nullptr);

    void setBadge(std::optional<qsizetype> count);
    /// The count as it is shown; empty for none.
    const QString& badge() const { return badge_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    int badgeWidth() const;

    SourceControlTab tab_;
    QString badge_;
    FocusSign focusSign_;
};

/// The tabs in their order, in as many columns as the width has room for. The arrow keys go from tab to tab.
class SourceControlTabBar final : public QWidget
{
    Q_OBJECT

public:
    explicit SourceControlTabBar(QWidget* parent = nullptr);

    SourceControlTab selectedTab() const { return selectedTab_; }
    void select(SourceControlTab tab);
    void setBadge(SourceControlTab tab, std::optional<qsizetype> count);
    SourceControlTabButton& button(SourceControlTab tab) { return *buttons_[static_cast<std::size_t>(tab)]; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void selectedTabChanged(SourceControlTab tab);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int columnsFor(int width) const;
    void place();

    QButtonGroup group_;
    std::array<SourceControlTabButton*, allSourceControlTabs.size()> buttons_{};
    SourceControlTab selectedTab_ = SourceControlTab::changes;
};

} // namespace kelm
