#include "platform/view/details_sheet.h"

#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/sheet_frame.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr QSize usualSize(560, 320);
constexpr int textSize = 12;
/// A child may print without end, and what is beyond this nobody reads.
constexpr qsizetype mostUnits = 1 << 20;

} // namespace

DetailsSheet::DetailsSheet(const QString& line, const QString& text, QWidget* parent)
    : QDialog(parent), text_(new QPlainTextEdit(text.left(mostUnits), this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(tr("Details"));
    resize(usualSize);
    text_->setReadOnly(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(textSize);
    text_->setFont(font);
    text_->setAccessibleName(tr("Details"));
    auto* title = new WrappedLabel(line, style::headlineFont(), Tint::primary(), this);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(sheetMargins());
    column->setSpacing(sheetSpacing);
    column->addWidget(title);
    column->addWidget(text_, 1);
    column->addWidget(makeButtons());
    text_->setFocus(Qt::OtherFocusReason);
}

QWidget* DetailsSheet::makeButtons()
{
    auto* buttons = new QWidget(this);
    auto* copyAll = new QPushButton(tr("Copy"), buttons);
    copyAll->setAutoDefault(false);
    connect(copyAll, &QPushButton::clicked, this, &DetailsSheet::copy);
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins({});
    row->setSpacing(sheetSpacing);
    row->addStretch();
    row->addWidget(copyAll);
    row->addWidget(makeCloseButton(*buttons, [this] { close(); }));
    return buttons;
}

QString DetailsSheet::text() const
{
    return text_->toPlainText();
}

void DetailsSheet::copy() const
{
    QGuiApplication::clipboard()->setText(text());
}

} // namespace kelm
