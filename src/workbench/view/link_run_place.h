// Where the question of a link stands.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QWidget>

namespace kelm {

class LinkRunBar;

/// The place above the code, empty but while the question of a link stands with the current document. Each question
/// has a bar of its own: a press that began on one never ends on another.
class LinkRunPlace final : public QWidget
{
    Q_OBJECT

public:
    /// Both outlive the place.
    LinkRunPlace(AppState& appState, ThemeManager& themeManager, QWidget* parent = nullptr);

    /// Null while there is no question.
    LinkRunBar* bar() const { return bar_; }

private:
    void follow();
    void show(const std::shared_ptr<Document>& document);

    AppState& appState_;
    ThemeManager& themeManager_;
    LinkRunBar* bar_ = nullptr;
    /// The document of the bar, while there is one.
    std::weak_ptr<Document> asked_;
};

} // namespace kelm
