#include "git/view/sheet_frame.h"

#include "platform/view/divider.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kelm {

namespace {

constexpr QSize usualSize(920, 640);
constexpr QSize leastSize(520, 320);
/// Between the edges of the window and those of its sheet.
constexpr int distance = 60;

} // namespace

void frameSheet(QDialog& dialog, QWidget* header, QWidget* content)
{
    dialog.setWindowModality(Qt::WindowModal);
    auto* column = new QVBoxLayout(&dialog);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(header);
    column->addWidget(new Divider(Qt::Horizontal, &dialog));
    column->addWidget(content, 1);

    dialog.setMinimumSize(leastSize);
    QSize size = usualSize;
    if (const QWidget* parent = dialog.parentWidget(); parent != nullptr) {
        size = size.boundedTo(parent->window()->size() - QSize(distance, distance)).expandedTo(leastSize);
    }
    dialog.resize(size);
}

QPushButton* makeCloseButton(QDialog& dialog)
{
    auto* button = new QPushButton(QDialog::tr("Close"), &dialog);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &dialog, &QDialog::close);
    return button;
}

} // namespace kelm
