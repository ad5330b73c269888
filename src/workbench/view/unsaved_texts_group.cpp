#include "workbench/view/unsaved_texts_group.h"

#include "app/state/unsaved_texts.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "workbench/view/unsaved_text_row.h"

#include <QDateTime>
#include <QEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int unsavedPadding = 12;
constexpr int unsavedWidth = 380;

} // namespace

UnsavedTextsGroup::UnsavedTextsGroup(AppState& appState, QWidget& before, QWidget* parent)
    : RoundedGroup(parent), appState_(appState), before_(before)
{
    setMinimumWidth(unsavedWidth);
    setMaximumWidth(unsavedWidth);
    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(unsavedPadding, unsavedPadding, unsavedPadding, unsavedPadding);
    layout_->setSpacing(2);
    connect(&appState_.unsavedTexts().store(), &RecoveryStore::textsChanged, this, &UnsavedTextsGroup::refresh);
    rebuild();
}

void UnsavedTextsGroup::refresh()
{
    const QList<UnsavedText>& texts = appState_.unsavedTexts().store().texts();
    bool isInUse = isPointerOver_ && isVisible() && !rows_.isEmpty();
    for (UnsavedTextRow* row : std::as_const(rows_)) {
        const bool isThere =
            std::any_of(texts.begin(), texts.end(), [row](const UnsavedText& text) { return text.id == row->id(); });
        if (!isThere) {
            row->setGone();
        }
        isInUse = isInUse || (row->hasGone() && row->hasFocus());
    }
    if (!isInUse) {
        rebuild();
    }
}

void UnsavedTextsGroup::rebuild()
{
    const auto focused = std::find_if(rows_.begin(), rows_.end(), [](const UnsavedTextRow* row) {
        return row->openButton()->hasFocus() || row->deleteButton()->hasFocus();
    });
    const QString focusedId = focused != rows_.end() ? (*focused)->id() : QString();
    const bool isOnDelete = focused != rows_.end() && (*focused)->deleteButton()->hasFocus();
    rows_.clear();
    while (QLayoutItem* item = layout_->takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            // It may be the one whose click is being answered.
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
    const QList<UnsavedText>& texts = appState_.unsavedTexts().store().texts();
    setVisible(!texts.isEmpty());
    if (texts.isEmpty()) {
        showsAll_ = false;
        return;
    }
    layout_->addWidget(new TextLabel(u"Unsaved text"_s, style::headlineFont(), Tint::primary(), this));
    layout_->addSpacing(4);
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const qsizetype count = showsAll_ ? texts.size() : std::min(texts.size(), shownAtFirst);
    for (const UnsavedText& text : texts.first(count)) {
        addRow(text, now);
        if (text.id == focusedId) {
            (isOnDelete ? rows_.constLast()->deleteButton() : rows_.constLast()->openButton())
                ->setFocus(Qt::TabFocusReason);
        }
    }
    if (count < texts.size()) {
        auto* all = new PlainButton({.tint = Tint::accent()}, this);
        all->setText(u"Show All %1"_s.arg(texts.size()));
        connect(all, &PlainButton::clicked, this, [this] {
            showsAll_ = true;
            rebuild();
        });
        all->show();
        setTabOrder(rows_.constLast()->deleteButton(), all);
        layout_->addWidget(all, 0, Qt::AlignHCenter);
    }
}

void UnsavedTextsGroup::addRow(const UnsavedText& text, qint64 now)
{
    auto* row = new UnsavedTextRow(text, now, this);
    UnsavedTexts& unsavedTexts = appState_.unsavedTexts();
    connect(row, &UnsavedTextRow::opened, this, [&unsavedTexts, id = text.id] { unsavedTexts.open(id); });
    connect(row, &UnsavedTextRow::deleted, this, [&unsavedTexts, id = text.id] { unsavedTexts.store().remove(id); });
    // By then another widget has the keyboard.
    connect(row, &UnsavedTextRow::left, this, &UnsavedTextsGroup::refresh, Qt::QueuedConnection);
    layout_->addWidget(row);
    // Else the layout does that later, and until then it cannot take the keyboard.
    row->show();
    setTabOrder(rows_.isEmpty() ? &before_ : rows_.constLast()->deleteButton(), row->openButton());
    setTabOrder(row->openButton(), row->deleteButton());
    rows_.append(row);
}

bool UnsavedTextsGroup::event(QEvent* event)
{
    if (event->type() == QEvent::Enter) {
        isPointerOver_ = true;
    } else if (event->type() == QEvent::Leave) {
        isPointerOver_ = false;
        refresh();
    }
    return RoundedGroup::event(event);
}

} // namespace kelm
