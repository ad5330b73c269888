// The strip of open documents above the editor.
#pragma once

#include "app/app_state.h"

#include <QTabBar>

#include <vector>

namespace kelm {

/// One tab for each open document, with its title; hidden when there is none.
class DocumentStrip final : public QTabBar
{
    Q_OBJECT

public:
    explicit DocumentStrip(AppState& appState, QWidget* parent = nullptr);

private:
    void takeDocuments();
    void takeCurrentIndex();
    void takeTitle(const Document* document);

    AppState& appState_;
    std::vector<QMetaObject::Connection> titleConnections_;
};

} // namespace kelm
