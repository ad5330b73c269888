#include "workbench/status/view/status_bar_view.h"

#include "git/service/git_service.h"
#include "platform/files/file_url.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_role.h"
#include "platform/view/mnemonics.h"
#include "workbench/status/git_branch.h"
#include "workbench/status/view/document_status.h"
#include "workbench/status/view/status_bar_items.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int barHeight = 26;
constexpr int endPadding = 8;
constexpr double groundOpacity = 0.95;
constexpr double lineOpacity = 0.05;

} // namespace

StatusBarView::StatusBarView(AppState& appState, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent), appState_(appState), themeManager_(themeManager), row_(new QHBoxLayout(this))
{
    setFixedHeight(barHeight);
    setAccessibleRole(*this, QAccessible::StatusBar);
    setAccessibleName(tr("Status bar"));
    row_->setContentsMargins(endPadding, 1, endPadding, 0);
    row_->setSpacing(2);

    branchPill_ = new PlainButton({.symbol = u"arrow.triangle.branch"_s,
                                   .symbolSize = 10,
                                   .textSize = 11,
                                   .ground = Tint::primary().at(0.05),
                                   .padding = {8, 3, 8, 3}},
                                  this);
    branchPill_->setFocusPolicy(Qt::NoFocus);
    branchPill_->setHelp(tr("Branch"));
    divider_ = new StatusBarDivider(this);
    themeMenu_ = new StatusBarMenu(
        u"paintpalette"_s, {},
        [this](QMenu& menu) {
            for (const EditorTheme& theme : themeManager_.availableThemes()) {
                QAction* action = menu.addAction(withoutMnemonic(shownName(theme.name)), &menu, [this, theme] {
                    themeManager_.setCurrentTheme(theme);
                    themeManager_.saveTheme();
                    themeManager_.applyAppearance();
                });
                action->setCheckable(true);
                action->setChecked(theme.name == themeManager_.currentTheme().name);
            }
        },
        this);
    themeMenu_->setHelp(tr("Theme"));
    auto* bell = new PlainButton(
        {.symbol = u"bell"_s, .symbolSize = 10, .padding = {}, .cornerRadius = 4, .fixedSize = {24, 20}}, this);
    bell->setHelp(tr("Notifications"));

    row_->addStretch(1);
    row_->addWidget(branchPill_);
    row_->addStretch(1);
    row_->addWidget(divider_);
    row_->addWidget(themeMenu_);
    row_->addWidget(bell);

    connect(&appState_, &AppState::currentDocumentChanged, this, &StatusBarView::refreshCurrentDocument);
    connect(&appState_, &AppState::currentProjectChanged, this, &StatusBarView::refreshBranch);
    connect(&appState_.git(), &GitService::branchChanged, this, &StatusBarView::refreshBranch);
    // git puts a new file in the place of the old one, which only the folder tells.
    connect(&headWatcher_, &QFileSystemWatcher::directoryChanged, this, &StatusBarView::refreshBranch);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, &StatusBarView::refreshTheme);
    refreshCurrentDocument();
    refreshBranch();
    refreshTheme();
}

void StatusBarView::refreshCurrentDocument()
{
    // A menu of theirs may be open, and be the one that is answered.
    for (QWidget* old : std::initializer_list<QWidget*>{left_, right_}) {
        if (old != nullptr) {
            row_->removeWidget(old);
            old->hide();
            old->deleteLater();
        }
    }
    left_ = nullptr;
    right_ = nullptr;
    const std::shared_ptr<Document> document = appState_.currentDocument();
    divider_->setVisible(document != nullptr);
    if (document) {
        left_ = new DocumentLeftStatus(document, this);
        right_ = new DocumentRightStatus(document, this);
        row_->insertWidget(0, left_);
        row_->insertWidget(row_->indexOf(divider_), right_);
    }
}

void StatusBarView::refreshBranch()
{
    branchPill_->setVisible(appState_.currentProject().has_value());
    if (!appState_.currentProject()) {
        watchHead({});
        return;
    }
    // Where there is no repository yet, one may come.
    const QString project = folderPrefix(*appState_.currentProject());
    const QString repository = project + u".git"_s;
    watchHead(QFileInfo(repository).isDir() ? repository : project);
    branchPill_->setText(shownName(gitBranch(*appState_.currentProject()).value_or(u"main"_s)));
    branchPill_->setAccessibleDescription(branchPill_->text());
    branchPill_->updateGeometry();
}

void StatusBarView::watchHead(const QString& folder)
{
    if (headWatcher_.directories() == QStringList{folder}) {
        return;
    }
    if (!headWatcher_.directories().isEmpty()) {
        headWatcher_.removePaths(headWatcher_.directories());
    }
    if (QFileInfo(folder).isDir()) {
        headWatcher_.addPath(folder);
    }
}

void StatusBarView::refreshTheme()
{
    themeMenu_->setText(shownName(themeManager_.currentTheme().name));
    themeMenu_->updateGeometry();
    update();
}

void StatusBarView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QColor ground = themeManager_.currentTheme().backgroundColor.toColor();
    ground.setAlphaF(static_cast<float>(groundOpacity));
    painter.fillRect(rect(), ground);
    painter.fillRect(QRect(0, 0, width(), 1), Tint::primary().at(lineOpacity).on(*this));
}

} // namespace kelm
