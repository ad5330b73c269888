// The line over the source control panel's tabs.
#pragma once

#include <QWidget>

namespace kelm {

class GitService;
class SymbolLabel;
class TextLabel;

/// The branch, or the commit of a HEAD that is on none, how far it is from its upstream, whether there are conflicts,
/// and a button that reads everything anew.
class SourceControlHeader final : public QWidget
{
    Q_OBJECT

public:
    explicit SourceControlHeader(GitService& git, QWidget* parent = nullptr);

private:
    void refreshBranch();
    void refreshConflicts();

    GitService& git_;
    TextLabel* branch_;
    TextLabel* aheadBehind_;
    SymbolLabel* conflicts_;
};

} // namespace kelm
