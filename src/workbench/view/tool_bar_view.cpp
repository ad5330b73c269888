#include "workbench/view/tool_bar_view.h"

#include "app/commands/command_table.h"
#include "app/state/rewrite_document.h"
#include "editor/transforms/xml_formatter.h"
#include "platform/text/platform_words.h"
#include "platform/view/accessible_role.h"
#include "platform/view/plain_button.h"
#include "workbench/view/responder.h"
#include "workbench/view/tool_bar_buttons.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int barHeight = 44;
/// Keeps clear of the window controls that some platforms draw over the content.
constexpr int windowControlsWidth = 70;
constexpr int endPadding = 10;
constexpr QSize buttonSize(28, 28);
constexpr int menuIconSize = 12;
constexpr double gradientOpacity = 0.02;
constexpr double lineOpacity = 0.15;

void formatXmlPlainly(AppState& state)
{
    rewriteCurrentDocument(state, u"Formatting XML…"_s, [](const QString& text) {
        return XMLFormatter::basicFormat(text, XMLFormatter::basicIndent);
    });
}

} // namespace

ToolbarView::ToolbarView(CommandTargets targets, ThemeManager& themeManager, std::function<void()> openSettings,
                         QWidget* parent)
    : QWidget(parent),
      targets_(std::move(targets)),
      appState_(targets_.appState),
      themeManager_(themeManager),
      row_(new QHBoxLayout(this))
{
    setFixedHeight(barHeight);
    setAccessibleRole(*this, QAccessible::ToolBar);
    setAccessibleName(tr("Toolbar"));
    row_->setContentsMargins(windowControlsWidth, 0, endPadding, 1);
    row_->setSpacing(4);

    addButton(u"chevron.left"_s, u"Back"_s, {})->setEnabled(false);
    addButton(u"chevron.right"_s, u"Forward"_s, {})->setEnabled(false);
    addDivider();
    addFileGroup();
    addDivider();
    addButton(u"arrow.uturn.backward"_s, u"Undo (⌘Z)"_s, [] { sendActionToFirstResponder("undo"); });
    addButton(u"arrow.uturn.forward"_s, u"Redo (⇧⌘Z)"_s, [] { sendActionToFirstResponder("redo"); });
    row_->addStretch(1);
    addQuickOpenButton();
    row_->addStretch(1);
    addRunButton();
    addFormatButton();
    addDivider();
    addToggle({u"sidebar.left"_s, u"Toggle Sidebar (⌘B)"_s, &AppState::showSidebar, &AppState::setShowSidebar,
               &AppState::showSidebarChanged});
    addToggle({u"rectangle.split.3x1"_s, u"Toggle Minimap (⇧⌘M)"_s, &AppState::showMinimap, &AppState::setShowMinimap,
               &AppState::showMinimapChanged});
    addToggle({u"rectangle.bottomthird.inset.filled"_s, u"Toggle Bottom Panel (⌃`)"_s, &AppState::showBottomPanel,
               &AppState::setShowBottomPanel, &AppState::showBottomPanelChanged});
    addButton(u"gear"_s, u"Settings"_s, std::move(openSettings));

    connect(&appState_, &AppState::currentDocumentChanged, this, &ToolbarView::watchCurrentDocument);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    watchCurrentDocument();
}

ToolbarButton* ToolbarView::addButton(const QString& icon, const QString& help, std::function<void()> action)
{
    auto* button = new ToolbarButton(icon, help, std::move(action), this);
    row_->addWidget(button);
    return button;
}

void ToolbarView::addDivider()
{
    row_->addWidget(new ToolbarDivider(this));
}

void ToolbarView::addFileGroup()
{
    addButton(u"plus"_s, u"New File (⌘N)"_s, [this] { give(Command::newFile); });
    addButton(u"folder"_s, u"Open (⌘O)"_s, [this] { give(Command::open); });
    addButton(u"square.and.arrow.down"_s, u"Save (⌘S)"_s, [this] { give(Command::save); });
}

void ToolbarView::give(Command command)
{
    commitCompositionInFocus();
    commandItem(command).action(targets_);
}

void ToolbarView::addQuickOpenButton()
{
    auto* button = new PlainButton({.symbol = u"magnifyingglass"_s,
                                    .symbolSize = 12,
                                    .textSize = 12,
                                    .ground = Tint::secondary().at(0.2),
                                    .padding = {10, 5, 10, 5},
                                    .spacing = 8,
                                    .trailingText = inPlatformWords(u"⌘P"_s)},
                                   this);
    button->setText(u"Quick Open"_s);
    button->setHelp(tr("Reopen a recent file by its name"));
    connect(button, &PlainButton::clicked, this, [this] { give(Command::goToFile); });
    row_->addWidget(button);
}

void ToolbarView::addRunButton()
{
    runButton_ = new PlainButton({.symbol = u"play.fill"_s,
                                  .symbolSize = 10,
                                  .textSize = 11,
                                  .weight = QFont::Medium,
                                  .tint = Tint(QColor(Qt::white)),
                                  .ground = SystemColor::green,
                                  .padding = {10, 5, 10, 5}},
                                 this);
    runButton_->setText(u"Run"_s);
    runButton_->setHelp(inPlatformWords(u"Run (⌘R)"_s));
    connect(runButton_, &PlainButton::clicked, this, [this] { give(Command::run); });
    row_->addWidget(runButton_);
}

void ToolbarView::addFormatButton()
{
    auto* button =
        new PlainButton({.symbol = u"text.alignleft"_s, .symbolSize = menuIconSize, .fixedSize = buttonSize}, this);
    button->setHelp(u"Format & Transform"_s);
    button->setMenu([this](QMenu& menu) { fillFormatMenu(menu); });
    row_->addWidget(button);
}

void ToolbarView::fillFormatMenu(QMenu& menu)
{
    const auto add = [this](QMenu& target, const QString& label, Command command) {
        target.addAction(label, this, [this, command] { give(command); });
    };
    const auto addCommand = [add](QMenu& target, Command command) { add(target, commandItem(command).label, command); };
    add(menu, inPlatformWords(u"Format JSON (⇧⌘J)"_s), Command::formatJson);
    // Unlike the menu bar's command this one always goes by the text alone, without a parser.
    menu.addAction(inPlatformWords(u"Format XML (⇧⌘X)"_s), this, [this] {
        commitCompositionInFocus();
        formatXmlPlainly(appState_);
    });
    menu.addSeparator();
    for (const Command command : {Command::sortLinesAscending, Command::sortLinesDescending}) {
        addCommand(menu, command);
    }
    menu.addSeparator();
    QMenu& transform = *menu.addMenu(u"Transform"_s);
    for (const Command command : {Command::toUpperCase, Command::toLowerCase, Command::toTitleCase,
                                  Command::toCamelCase, Command::toSnakeCase}) {
        addCommand(transform, command);
    }
}

void ToolbarView::addToggle(const Toggle& toggle)
{
    const auto flip = [this, toggle] {
        std::invoke(toggle.setShown, appState_, !std::invoke(toggle.isShown, appState_));
    };
    auto* button =
        new ToolbarToggleButton(toggle.icon, toggle.help, std::invoke(toggle.isShown, appState_), flip, this);
    connect(&appState_, toggle.changed, button,
            [this, button, isShown = toggle.isShown] { button->setIsActive(std::invoke(isShown, appState_)); });
    row_->addWidget(button);
}

void ToolbarView::watchCurrentDocument()
{
    for (const QMetaObject::Connection& connection : std::as_const(documentConnections_)) {
        disconnect(connection);
    }
    documentConnections_.clear();
    if (const std::shared_ptr<Document> document = appState_.currentDocument()) {
        documentConnections_ = {
            connect(document.get(), &Document::fileURLChanged, this, &ToolbarView::updateRunButton),
            connect(document.get(), &Document::languageChanged, this, &ToolbarView::updateRunButton),
        };
    }
    updateRunButton();
}

void ToolbarView::updateRunButton()
{
    const std::shared_ptr<Document> document = appState_.currentDocument();
    runButton_->setVisible(document && (document->fileURL() || document->language().runsWithoutFile()));
}

void ToolbarView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
    QLinearGradient gradient(0, 0, 0, height());
    gradient.setColorAt(0, Tint::primary().at(gradientOpacity).on(*this));
    gradient.setColorAt(1, Tint::primary().at(0).on(*this));
    painter.fillRect(rect(), gradient);
    painter.fillRect(QRect(0, height() - 1, width(), 1), Tint::primary().at(lineOpacity).on(*this));
}

} // namespace kelm
