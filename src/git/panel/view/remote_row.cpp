#include "git/panel/view/remote_row.h"

#include "git/panel/view/row_menu.h"
#include "platform/text/shown_name.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

Row RemoteRow::content() const
{
    constexpr int editorHeight = 58;
    const RowFonts& fonts = RowFonts::standard();
    Row row;
    row.symbol = u"network"_s;
    row.firstLine = {{.text = shownName(remote.name), .font = fonts.body}};
    row.secondLine = {{.text = shownName(remote.url),
                       .font = fonts.smallMonospaced,
                       .tint = Tint::secondary(),
                       .elideMode = Qt::ElideMiddle}};
    row.help = shownName(remote.name) + u'\n' + shownName(remote.url);
    row.actions = {{u"Edit URL"_s, u"pencil"_s, [edit = onEdit, url = remote.url] { edit(url); }},
                   {u"Remove remote"_s, u"trash"_s, onRemove}};
    row.menu = {copyAction(u"Copy Name"_s, remote.name), copyAction(u"Copy URL"_s, remote.url)};
    if (editingURL) {
        row.height = editorHeight;
        row.makeEditor = [remoteRow = *this](QWidget* parent) { return new RemoteURLEditor(remoteRow, parent); };
    }
    return row;
}

RemoteURLEditor::RemoteURLEditor(const RemoteRow& row, QWidget* parent)
    : QWidget(parent), row_(row), field_(makePanelField(tr("URL"), this))
{
    field_->setText(row.editingURL.value_or(QString()));
    connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) {
        row_.editingURL = text;
        row_.onEdit(text);
    });
    PlainButton* saveButton = makePanelButton(tr("Save"), this, true);
    PlainButton* cancelButton = makePanelButton(tr("Cancel"), this);
    connect(saveButton, &QAbstractButton::clicked, this, &RemoteURLEditor::save);
    connect(cancelButton, &QAbstractButton::clicked, this, &RemoteURLEditor::cancel);

    auto* name = new QHBoxLayout;
    name->setSpacing(6);
    name->addWidget(new SymbolLabel(u"network"_s, 13, Tint::secondary(), this));
    name->addWidget(new TextLabel(shownName(row.remote.name), RowFonts::standard().body, Tint::primary(), this), 1);
    auto* controls = new QHBoxLayout;
    controls->setSpacing(4);
    controls->addWidget(field_, 1);
    controls->addWidget(saveButton);
    controls->addWidget(cancelButton);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 8, 4);
    column->setSpacing(4);
    column->addLayout(name);
    column->addLayout(controls);
    setFocusProxy(field_);
}

void RemoteURLEditor::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        save();
        return;
    case Qt::Key_Escape:
        cancel();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void RemoteURLEditor::save()
{
    // Setting the address makes the rows anew, and this editor goes with them.
    const RemoteRow row = row_;
    row.onSetURL(field_->text());
    row.onEdit(std::nullopt);
}

void RemoteURLEditor::cancel()
{
    const RemoteRow row = row_;
    row.onEdit(std::nullopt);
}

} // namespace kelm
