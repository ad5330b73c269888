#include "settings/view/settings_view.h"

#include "platform/view/accessible_role.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "settings/view/keybindings_view.h"
#include "settings/view/settings_form.h"
#include "settings/view/theme_settings_view.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr QSize windowSize(620, 564);

struct TabTitle
{
    const char* label;
    const char* icon;
};

constexpr std::array<TabTitle, SettingsView::tabCount> tabTitles{{
    {"General", "gear"},
    {"Editor", "doc.text"},
    {"Themes", "paintpalette"},
    {"Keybindings", "keyboard"},
    {"Extensions", "puzzlepiece.extension"},
}};

} // namespace

SettingsView::SettingsView(UserDefaults& store, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent, Qt::Window), pages_(new QStackedWidget(this))
{
    setAccessibleRole(*this, QAccessible::Window);
    setWindowTitle(tr("Settings"));
    setFixedSize(windowSize);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(12, 10, 12, 10);
    bar->setSpacing(4);
    bar->addStretch(1);
    for (int tab = 0; tab < tabCount; ++tab) {
        const TabTitle& title = tabTitles.at(tab);
        auto* button = new PlainButton({.symbol = QString::fromLatin1(title.icon),
                                        .symbolSize = 15,
                                        .textSize = 12,
                                        .checkedTint = Tint::primary(),
                                        .padding = {12, 7, 12, 7},
                                        .spacing = 7},
                                       this);
        button->setText(QString::fromLatin1(title.label));
        button->setCheckable(true);
        button->setAutoExclusive(true);
        connect(button, &PlainButton::toggled, this, [this, tab](bool isSelected) {
            if (isSelected) {
                pages_->setCurrentIndex(tab);
            }
        });
        buttons_.at(tab) = button;
        bar->addWidget(button);
    }
    bar->addStretch(1);
    for (QWidget* page : std::initializer_list<QWidget*>{
             new GeneralSettingsView(store, this), new EditorSettingsView(store, this),
             new ThemeSettingsView(themeManager, this), new KeybindingsView(this), new ExtensionSettingsView(this)}) {
        pages_->addWidget(page);
    }
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(bar);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(pages_, 1);
    select(general);
}

void SettingsView::select(Tab tab)
{
    buttons_.at(tab)->setChecked(true);
}

QWidget* SettingsView::page(Tab tab) const
{
    return pages_->widget(tab);
}

bool SettingsView::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate && focusWidget() == nullptr) {
        // Else it would get the keyboard without a sign.
        buttons_.at(pages_->currentIndex())->setFocus(Qt::TabFocusReason);
    }
    return QWidget::event(event);
}

void SettingsView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

ExtensionSettingsView::ExtensionSettingsView(QWidget* parent) : QWidget(parent)
{
    constexpr int iconSize = 40;
    auto* learnMore = new PlainButton(borderedLook(), this);
    learnMore->setText(u"Learn More"_s);
    auto* column = new QVBoxLayout(this);
    column->setSpacing(12);
    column->addStretch(1);
    const std::initializer_list<QWidget*> parts{
        new SymbolLabel(u"puzzlepiece.extension"_s, iconSize, Tint::secondary(), this),
        new TextLabel(u"Extensions"_s, style::headlineFont(), Tint::primary(), this),
        new TextLabel(u"Extensions will be available in a future update."_s,
                      style::interfaceFont(style::typeSize::body), Tint::secondary(), this),
        learnMore,
    };
    for (QWidget* part : parts) {
        column->addWidget(part, 0, Qt::AlignHCenter);
    }
    column->addStretch(1);
}

} // namespace kelm
