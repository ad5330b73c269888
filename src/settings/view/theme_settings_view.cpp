#include "settings/view/theme_settings_view.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/text/shown_name.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "settings/view/theme_preview.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int listWidth = 190;
constexpr int rowHeight = 30;
constexpr QSize swatchSize(22, 16);
constexpr int swatchRole = Qt::UserRole;
constexpr int currentRole = Qt::UserRole + 1;

/// A row: the theme's ground, its name, and a check mark on the current theme.
class ThemeDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return {listWidth, rowHeight}; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const Appearance appearance = style::appearanceOf(*option.widget);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF box = QRectF(option.rect).adjusted(4, 1, -4, -1);
        painter->setPen(Qt::NoPen);
        if (option.state.testFlag(QStyle::State_Selected)) {
            painter->setBrush(Tint::accent().at(0.25).in(appearance));
            painter->drawRoundedRect(box, style::radius::control, style::radius::control);
        } else if (option.state.testFlag(QStyle::State_MouseOver)) {
            painter->setBrush(Tint::primary().at(style::hoverOpacity).in(appearance));
            painter->drawRoundedRect(box, style::radius::control, style::radius::control);
        }
        const QRectF swatch(box.left() + 8, box.center().y() - swatchSize.height() / 2.0, swatchSize.width(),
                            swatchSize.height());
        painter->setBrush(index.data(swatchRole).value<QColor>());
        painter->setPen(QPen(Tint(SystemColor::gray).at(0.3).in(appearance), 1));
        painter->drawRoundedRect(swatch.adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
        painter->setPen(Tint::primary().in(appearance));
        const QRectF place(swatch.right() + 8, box.top(), box.right() - swatch.right() - 34, box.height());
        painter->drawText(
            place, Qt::AlignVCenter | Qt::TextSingleLine,
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, static_cast<int>(place.width())));
        if (index.data(currentRole).toBool()) {
            icons::paint(*painter, u"checkmark"_s, QRectF(box.right() - 20, box.center().y() - 6, 12, 12),
                         style::ink(Tint::accent(), appearance));
        }
        if (option.state.testFlag(QStyle::State_HasFocus)) {
            style::drawFocusRing(*painter, box, style::radius::control, *option.widget);
        }
        painter->restore();
    }
};

} // namespace

ThemeSettingsView::ThemeSettingsView(ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent),
      themeManager_(themeManager),
      list_(new QListWidget(this)),
      preview_(new ThemePreview(themeManager.currentTheme(), this))
{
    list_->setItemDelegate(new ThemeDelegate(list_));
    list_->setMinimumWidth(listWidth);
    list_->setMaximumWidth(listWidth);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setMouseTracking(true);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setAccessibleName(tr("Themes"));

    auto* apply = new PlainButton(prominentLook(), this);
    apply->setText(u"Apply Theme"_s);
    connect(apply, &PlainButton::clicked, this, &ThemeSettingsView::apply);
    // Themes are read from their folder; the button has no action.
    auto* import = new PlainButton(borderedLook(), this);
    import->setText(u"Import Theme..."_s);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addWidget(apply);
    buttons->addWidget(import);
    buttons->addStretch(1);
    auto* right = new QVBoxLayout;
    right->setContentsMargins(20, 20, 20, 20);
    right->setSpacing(12);
    right->addWidget(new TextLabel(u"Preview"_s, style::headlineFont(), Tint::primary(), this));
    right->addWidget(preview_);
    right->addLayout(buttons);
    right->addStretch(1);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(list_);
    row->addLayout(right, 1);

    // The row that only has the keyboard is not selected by that.
    connect(list_, &QListWidget::itemSelectionChanged, this, &ThemeSettingsView::previewSelection);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, &ThemeSettingsView::fillList);
    connect(&themeManager_, &ThemeManager::availableThemesChanged, this, &ThemeSettingsView::fillList);
    fillList();
}

void ThemeSettingsView::fillList()
{
    const QSignalBlocker quiet(list_);
    list_->clear();
    for (const EditorTheme& theme : themeManager_.availableThemes()) {
        auto* item = new QListWidgetItem(shownName(theme.name), list_);
        item->setData(swatchRole, theme.backgroundColor.toColor());
        item->setData(currentRole, theme.name == themeManager_.currentTheme().name);
        if (selectedTheme_ && selectedTheme_->name == theme.name) {
            list_->setCurrentItem(item);
        }
    }
    preview_->setTheme(selectedTheme_.value_or(themeManager_.currentTheme()));
}

void ThemeSettingsView::previewSelection()
{
    const QList<QListWidgetItem*> selected = list_->selectedItems();
    selectedTheme_.reset();
    if (!selected.isEmpty()) {
        selectedTheme_ = themeManager_.availableThemes().at(list_->row(selected.first()));
    }
    preview_->setTheme(selectedTheme_.value_or(themeManager_.currentTheme()));
}

void ThemeSettingsView::apply()
{
    if (!selectedTheme_) {
        return;
    }
    themeManager_.setCurrentTheme(*selectedTheme_);
    themeManager_.saveTheme();
    themeManager_.applyAppearance();
}

} // namespace kelm
