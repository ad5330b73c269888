#include "platform/view/sheet_frame.h"

#include "platform/view/divider.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace kelm {

void frameSheet(QWidget& sheet, QWidget* header, QWidget* content)
{
    auto* column = new QVBoxLayout(&sheet);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(header);
    column->addWidget(new Divider(Qt::Horizontal, &sheet));
    column->addWidget(content, 1);
}

QPushButton* makeCloseButton(QWidget& header, std::function<void()> close)
{
    auto* button = new QPushButton(QWidget::tr("Close"), &header);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &header, std::move(close));
    return button;
}

} // namespace kelm
