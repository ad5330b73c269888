#include "run/view/problems_view.h"

#include "editor/themes/theme_manager.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"

#include <QPainter>
#include <QVBoxLayout>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int iconSize = 24;
constexpr int spacing = 8;

} // namespace

ProblemsView::ProblemsView(ThemeManager& themeManager, QWidget* parent) : QWidget(parent), themeManager_(themeManager)
{
    auto* column = new QVBoxLayout(this);
    column->setSpacing(spacing);
    column->addStretch(1);
    const std::initializer_list<QWidget*> parts{
        new SymbolLabel(u"exclamationmark.triangle"_s, iconSize, Tint::secondary(), this),
        new TextLabel(u"No problems detected"_s, style::interfaceFont(style::typeSize::body), Tint::secondary(), this),
    };
    for (QWidget* part : parts) {
        column->addWidget(part, 0, Qt::AlignHCenter);
    }
    column->addStretch(1);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
}

void ProblemsView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
}

} // namespace kelm
