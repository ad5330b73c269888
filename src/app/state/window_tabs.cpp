#include "app/state/window_tabs.h"

namespace kelm {

namespace {

struct TabRow
{
    QLatin1String iconName;
    QLatin1String label;
};

/// In the order of `BottomPanelTab`.
constexpr TabRow bottomPanelRows[] = {
    {QLatin1String("terminal"), QLatin1String("Terminal")},
    {QLatin1String("doc.text"), QLatin1String("Output")},
    {QLatin1String("exclamationmark.triangle"), QLatin1String("Problems")},
};

/// In the order of `SidebarTab`.
constexpr TabRow sidebarRows[] = {
    {QLatin1String("doc.text"), QLatin1String("Explorer")},
    {QLatin1String("magnifyingglass"), QLatin1String("Search")},
    {QLatin1String("arrow.triangle.branch"), QLatin1String("Source Control")},
    {QLatin1String("puzzlepiece.extension"), QLatin1String("Extensions")},
};

} // namespace

QString BottomPanelTab::label() const
{
    return bottomPanelRows[value_].label;
}

QString BottomPanelTab::iconName() const
{
    return bottomPanelRows[value_].iconName;
}

QString SidebarTab::iconName() const
{
    return sidebarRows[value_].iconName;
}

QString SidebarTab::helpLabel() const
{
    return sidebarRows[value_].label;
}

} // namespace kelm
