// What the window's panels can show.
#pragma once

#include <QString>

#include <array>

namespace kelm {

/// Which mode the search overlay is in.
enum class SearchMode { find, replace, project };

/// What a tab of a panel is called, and its symbol.
struct TabRow
{
    QLatin1String iconName;
    QLatin1String label;
};

/// A tab of the bottom panel.
class BottomPanelTab
{
public:
    /// In the order in which the panel shows them.
    enum Case : quint8 { terminal, output, problems };
    static constexpr std::array rows{
        TabRow{QLatin1String("terminal"), QLatin1String("Terminal")},
        TabRow{QLatin1String("doc.text"), QLatin1String("Output")},
        TabRow{QLatin1String("exclamationmark.triangle"), QLatin1String("Problems")},
    };
    static constexpr std::size_t count = rows.size();

    constexpr BottomPanelTab() = default;
    constexpr BottomPanelTab(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    static constexpr std::array<BottomPanelTab, count> allCases();

    QString label() const { return rows.at(value_).label; }
    QString iconName() const { return rows.at(value_).iconName; }

    friend constexpr bool operator==(BottomPanelTab a, BottomPanelTab b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(BottomPanelTab a, Case b) { return a.value_ == b; }

private:
    Case value_ = terminal;
};

/// A tab of the sidebar.
class SidebarTab
{
public:
    /// In the order in which the bar shows them.
    enum Case : quint8 { files, search, sourceControl, extensions };
    static constexpr std::array rows{
        TabRow{QLatin1String("doc.text"), QLatin1String("Explorer")},
        TabRow{QLatin1String("magnifyingglass"), QLatin1String("Search")},
        TabRow{QLatin1String("arrow.triangle.branch"), QLatin1String("Source Control")},
        TabRow{QLatin1String("puzzlepiece.extension"), QLatin1String("Extensions")},
    };
    static constexpr std::size_t count = rows.size();

    constexpr SidebarTab() = default;
    constexpr SidebarTab(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    static constexpr std::array<SidebarTab, count> allCases();

    QString iconName() const { return rows.at(value_).iconName; }
    QString helpLabel() const { return rows.at(value_).label; }

    friend constexpr bool operator==(SidebarTab a, SidebarTab b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(SidebarTab a, Case b) { return a.value_ == b; }

private:
    Case value_ = files;
};

/// The tabs of a panel, as many as it has rows.
template <typename Tab>
constexpr std::array<Tab, Tab::count> allTabs()
{
    std::array<Tab, Tab::count> all;
    for (std::size_t index = 0; index < all.size(); ++index) {
        all[index] = typename Tab::Case(index);
    }
    return all;
}

constexpr std::array<BottomPanelTab, BottomPanelTab::count> BottomPanelTab::allCases()
{
    return allTabs<BottomPanelTab>();
}

constexpr std::array<SidebarTab, SidebarTab::count> SidebarTab::allCases()
{
    return allTabs<SidebarTab>();
}

} // namespace kelm
