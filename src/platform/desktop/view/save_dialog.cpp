#include "platform/desktop/view/save_dialog.h"

#include "platform/desktop/save_place.h"
#include "platform/desktop/view/file_dialog_look.h"
#include "platform/files/native_path.h"

#include <QAccessible>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QSize signSize(16, 16);

QString filterFor(ContentType type)
{
    switch (type) {
    case ContentType::plainText:
        return QObject::tr("Plain Text (*.txt *)");
    case ContentType::sourceCode:
        return QObject::tr("Source Code (*)");
    case ContentType::json:
        return QObject::tr("JSON (*.json)");
    case ContentType::xml:
        return QObject::tr("XML (*.xml *.plist)");
    }
    return {};
}

QStringList filtersFor(const QList<ContentType>& types)
{
    QStringList filters;
    std::transform(types.begin(), types.end(), std::back_inserter(filters), filterFor);
    return filters;
}

} // namespace

SaveDialog::SaveDialog(QWidget* parent, const SavePanelOptions& options, const QString& folder)
    : QFileDialog(parent, QObject::tr("Save As"), folder)
{
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setNameFilters(filtersFor(options.allowedTypes));
    selectFile(options.suggestedName);
}

void SaveDialog::showEvent(QShowEvent* event)
{
    giveOwnLook(*this);
    if (QLineEdit* field = nameField(*this)) {
        const QString name = field->text();
        const qsizetype dot = name.lastIndexOf(u'.');
        field->setSelection(0, static_cast<int>(dot > 0 ? dot : name.size()));
    }
    QFileDialog::showEvent(event);
}

void SaveDialog::accept()
{
    const QStringList files = nameField(*this) != nullptr ? selectedFiles() : QStringList();
    // The dialog goes into a folder by itself.
    if (files.size() == 1 && !isFolder(files.first())) {
        if (const QString why = whyNotSaved(files.first()); !why.isEmpty()) {
            tell(why);
            return;
        }
    }
    QFileDialog::accept();
}

void SaveDialog::makeWords()
{
    auto* line = new QWidget(this);
    auto* sign = new QLabel(line);
    sign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(signSize));
    words_ = new QLabel(line);
    words_->setObjectName(u"whyNotSaved"_s);
    words_->setTextFormat(Qt::PlainText);
    words_->setWordWrap(true);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(sign);
    row->addWidget(words_, 1);
    if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
        grid->addWidget(line, grid->rowCount(), 0, 1, -1);
    }
    connect(nameField(*this), &QLineEdit::textChanged, line, &QWidget::hide);
}

void SaveDialog::tell(const QString& why)
{
    if (words_ == nullptr) {
        makeWords();
    }
    words_->setText(why);
    words_->parentWidget()->show();
    QAccessibleEvent alert(words_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    nameField(*this)->setFocus();
    nameField(*this)->selectAll();
}

} // namespace kelm
