#include "workbench/empty_state.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int titleSize = 28;
constexpr int buttonWidth = 160;
constexpr int spacing = 12;

} // namespace

EmptyState::EmptyState(AppState& appState, QWidget* parent) : QWidget(parent)
{
    auto* title = new QLabel(QStringLiteral("KelmWright"), this);
    QFont titleFont = title->font();
    titleFont.setPixelSize(titleSize);
    titleFont.setWeight(QFont::Light);
    title->setFont(titleFont);

    const auto makeButton = [this](const QString& label) {
        auto* button = new QPushButton(label, this);
        button->setFixedWidth(buttonWidth);
        return button;
    };
    QPushButton* newFile = makeButton(tr("New File"));
    QPushButton* openFile = makeButton(tr("Open..."));
    connect(newFile, &QPushButton::clicked, &appState, &AppState::createNewTab);
    connect(openFile, &QPushButton::clicked, &appState, &AppState::showOpenPanel);

    auto* column = new QVBoxLayout(this);
    column->setSpacing(spacing);
    column->addStretch();
    column->addWidget(title, 0, Qt::AlignHCenter);
    column->addSpacing(spacing);
    column->addWidget(newFile, 0, Qt::AlignHCenter);
    column->addWidget(openFile, 0, Qt::AlignHCenter);
    column->addStretch();
}

} // namespace kelm
