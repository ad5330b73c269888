#include "workbench/view/extensions_view.h"

#include "platform/style/view/style.h"
#include "platform/view/labels.h"

#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

ExtensionsView::ExtensionsView(QWidget* parent) : QWidget(parent)
{
    constexpr int iconSize = 40;
    constexpr int spacing = 10;
    auto* column = new QVBoxLayout(this);
    column->setSpacing(spacing);
    column->addStretch(1);
    const std::initializer_list<QWidget*> parts{
        new SymbolLabel(u"puzzlepiece.extension"_s, iconSize, Tint::secondary(), this),
        new TextLabel(u"Extensions"_s, style::headlineFont(), Tint::primary(), this),
        new TextLabel(u"Coming soon..."_s, style::interfaceFont(style::typeSize::body), Tint::secondary(), this),
    };
    for (QWidget* part : parts) {
        column->addWidget(part, 0, Qt::AlignHCenter);
    }
    column->addStretch(1);
}

} // namespace kelm
