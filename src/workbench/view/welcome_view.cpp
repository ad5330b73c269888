#include "workbench/view/welcome_view.h"

#include "app/state/unsaved_texts.h"
#include "platform/view/accessible_role.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "workbench/view/recent_file_button.h"
#include "workbench/view/rounded_group.h"
#include "workbench/view/unsaved_texts_group.h"

#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int spacing = 20;
constexpr int iconSize = 60;
constexpr int groupPadding = 12;
constexpr int groupWidth = 380;
constexpr qsizetype shownRecentFiles = 5;

PlainButton* makeButton(const QString& text, const QString& symbol, QWidget* parent)
{
    auto* button = new PlainButton(prominentLook(symbol), parent);
    button->setText(text);
    return button;
}

} // namespace

WelcomeView::WelcomeView(AppState& appState, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent), appState_(appState), themeManager_(themeManager)
{
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(tr("Welcome"));
    // Where the area is lower than the column, that scrolls.
    auto* scroll = new QScrollArea(this);
    auto* content = new QWidget(scroll);
    recentFiles_ = new RoundedGroup(content);
    auto* icon = new SymbolLabel(u"doc.text"_s, iconSize, Tint::secondary(), content);
    auto* name = new TextLabel(u"KelmWright"_s, style::interfaceFont(style::typeSize::largeTitle, QFont::Bold),
                               Tint::primary(), content);
    auto* advice = new TextLabel(u"Start editing by creating a new file or opening an existing one"_s,
                                 style::interfaceFont(style::typeSize::body), Tint::secondary(), content);
    auto* newFile = makeButton(u"New File"_s, u"plus"_s, content);
    auto* openFile = makeButton(u"Open File"_s, u"folder"_s, content);
    unsavedTexts_ = new UnsavedTextsGroup(appState_, *openFile, content);
    connect(newFile, &PlainButton::clicked, &appState_, &AppState::createNewTab);
    connect(openFile, &PlainButton::clicked, &appState_, &AppState::showOpenPanel);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing);
    buttons->addStretch(1);
    buttons->addWidget(newFile);
    buttons->addWidget(openFile);
    buttons->addStretch(1);

    recentFiles_->setMaximumWidth(groupWidth);
    recentFiles_->setMinimumWidth(groupWidth);
    recentRows_ = new QVBoxLayout(recentFiles_);
    recentRows_->setContentsMargins(groupPadding, groupPadding, groupPadding, groupPadding);
    recentRows_->setSpacing(2);

    auto* column = new QVBoxLayout(content);
    column->setSpacing(spacing);
    column->addStretch(1);
    for (QWidget* widget : std::initializer_list<QWidget*>{icon, name, advice}) {
        column->addWidget(widget, 0, Qt::AlignHCenter);
    }
    column->addLayout(buttons);
    column->addWidget(unsavedTexts_, 0, Qt::AlignHCenter);
    column->addWidget(recentFiles_, 0, Qt::AlignHCenter);
    column->addStretch(1);

    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    // The theme's ground is painted behind both.
    scroll->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    auto* area = new QVBoxLayout(this);
    area->setContentsMargins(0, 0, 0, 0);
    area->addWidget(scroll);

    connect(&appState_, &AppState::recentFilesChanged, this, &WelcomeView::refreshRecentFiles);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    refreshRecentFiles();
}

void WelcomeView::refreshRecentFiles()
{
    while (QLayoutItem* item = recentRows_->takeAt(0)) {
        if (QWidget* row = item->widget()) {
            // It may be the one whose click is being answered.
            row->hide();
            row->deleteLater();
        }
        delete item;
    }
    recentFiles_->setVisible(!appState_.recentFiles().isEmpty());
    if (appState_.recentFiles().isEmpty()) {
        return;
    }
    recentRows_->addWidget(new TextLabel(u"Recent Files"_s, style::headlineFont(), Tint::primary(), recentFiles_));
    recentRows_->addSpacing(4);
    for (const QUrl& url : appState_.recentFiles().first(std::min(appState_.recentFiles().size(), shownRecentFiles))) {
        auto* button = new RecentFileButton(url, recentFiles_);
        connect(button, &RecentFileButton::clicked, this, [this, url] { appState_.openFile(url); });
        recentRows_->addWidget(button);
    }
}

void WelcomeView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    unsavedTexts_->rebuild();
    // Another program may have ended meanwhile.
    appState_.unsavedTexts().store().refresh();
}

void WelcomeView::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
}

} // namespace kelm
