#include "git/panel/view/source_control_empty_state.h"

#include "app/state/app_state.h"
#include "git/service/git_service.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int symbolSize = 28;
constexpr double symbolOpacity = 0.6;

PlainButton* makeButton(const QString& symbol, const QString& label, QWidget* parent)
{
    ButtonLook look = borderedLook(symbol);
    look.textSize = 12;
    auto* button = new PlainButton(look, parent);
    button->setText(label);
    return button;
}

} // namespace

SourceControlEmptyState::SourceControlEmptyState(AppState& appState, QWidget* parent)
    : QWidget(parent), appState_(appState)
{
    auto* symbol =
        new SymbolLabel(u"externaldrive.badge.questionmark"_s, symbolSize, Tint::secondary().at(symbolOpacity), this);
    auto* title = new WrappedLabel(u"Not a Git repository"_s, style::headlineFont(), Tint::primary(), this);
    auto* advice = new WrappedLabel(u"Open a folder, or clone one below."_s,
                                    style::interfaceFont(style::typeSize::subheadline), Tint::secondary(), this);
    title->setAlignment(Qt::AlignCenter);
    advice->setAlignment(Qt::AlignCenter);
    PlainButton* initializeButton = makeButton(u"plus.square.on.square"_s, u"Initialize Repository"_s, this);
    PlainButton* cloneButton = makeButton(u"square.and.arrow.down.on.square"_s, u"Clone Repository…"_s, this);
    connect(initializeButton, &QAbstractButton::clicked, this, &SourceControlEmptyState::initialize);
    connect(cloneButton, &QAbstractButton::clicked, this, &SourceControlEmptyState::cloneRequested);
    const auto refreshProject = [this, initializeButton] {
        initializeButton->setVisible(appState_.currentProject().has_value());
    };
    connect(&appState_, &AppState::currentProjectChanged, initializeButton, refreshProject);
    refreshProject();

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(8);
    column->addStretch();
    column->addWidget(symbol, 0, Qt::AlignHCenter);
    column->addWidget(title);
    column->addWidget(advice);
    column->addSpacing(8);
    column->addWidget(initializeButton, 0, Qt::AlignHCenter);
    column->addWidget(cloneButton, 0, Qt::AlignHCenter);
    column->addStretch();
}

void SourceControlEmptyState::initialize()
{
    GitService& git = appState_.git();
    const GitOpResult result = git.initRepo(*appState_.currentProject(), u"main"_s);
    if (!result.isSuccess()) {
        git.setLastError(result.message());
    }
}

} // namespace kelm
