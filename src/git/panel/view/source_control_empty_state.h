// What the source control panel shows without a repository.
#pragma once

#include <QWidget>

namespace kelm {

class AppState;

/// Says that there is no repository, and offers to make one in the project's folder, if there is a project, and to
/// clone one.
class SourceControlEmptyState final : public QWidget
{
    Q_OBJECT

public:
    explicit SourceControlEmptyState(AppState& appState, QWidget* parent = nullptr);

Q_SIGNALS:
    void cloneRequested();

private:
    void initialize();

    AppState& appState_;
};

} // namespace kelm
