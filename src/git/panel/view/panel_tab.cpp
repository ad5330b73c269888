#include "git/panel/view/panel_tab.h"

#include "platform/view/divider.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int formMargin = 8;
constexpr int formSpacing = 6;

} // namespace

void PanelTab::refresh()
{
    isStale_ = !isVisible();
    if (!isStale_) {
        refreshState();
    }
}

void PanelTab::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (isStale_) {
        isStale_ = false;
        refreshState();
    }
}

void PanelTab::arrange(const QList<std::variant<QWidget*, QLayout*>>& formRows, QWidget* list)
{
    auto* form = new QVBoxLayout;
    form->setContentsMargins(formMargin, formMargin, formMargin, formMargin);
    form->setSpacing(formSpacing);
    for (const auto& row : formRows) {
        if (QWidget* const* widget = std::get_if<QWidget*>(&row)) {
            form->addWidget(*widget);
        } else {
            form->addLayout(std::get<QLayout*>(row));
        }
    }
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(form);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(list, 1);
}

QLayout* PanelTab::besideButton(QWidget* field, QWidget* button)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(formSpacing);
    row->addWidget(field, 1);
    row->addWidget(button);
    return row;
}

} // namespace kelm
