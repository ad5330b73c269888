// What the window's panels can show.
#pragma once

#include <QString>

#include <array>

namespace kelm {

/// Which mode the search overlay is in.
enum class SearchMode { find, replace, project };

/// A tab of the bottom panel.
class BottomPanelTab
{
public:
    enum Case : quint8 { terminal, output, problems };

    constexpr BottomPanelTab() = default;
    constexpr BottomPanelTab(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    /// All tabs in the order in which the panel shows them.
    static constexpr std::array<BottomPanelTab, 3> allCases();

    QString label() const;
    QString iconName() const;

    friend constexpr bool operator==(BottomPanelTab a, BottomPanelTab b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(BottomPanelTab a, Case b) { return a.value_ == b; }

private:
    Case value_ = terminal;
};

constexpr std::array<BottomPanelTab, 3> BottomPanelTab::allCases()
{
    return {terminal, output, problems};
}

/// A tab of the sidebar.
class SidebarTab
{
public:
    enum Case : quint8 { files, search, sourceControl, extensions };

    constexpr SidebarTab() = default;
    constexpr SidebarTab(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    /// All tabs in the order in which the bar shows them.
    static constexpr std::array<SidebarTab, 4> allCases();

    QString iconName() const;
    QString helpLabel() const;

    friend constexpr bool operator==(SidebarTab a, SidebarTab b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(SidebarTab a, Case b) { return a.value_ == b; }

private:
    Case value_ = files;
};

constexpr std::array<SidebarTab, 4> SidebarTab::allCases()
{
    return {files, search, sourceControl, extensions};
}

} // namespace kelm
