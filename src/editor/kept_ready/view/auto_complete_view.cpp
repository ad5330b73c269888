#include "editor/kept_ready/view/auto_complete_view.h"

#include "editor/kept_ready/view/auto_complete_manager.h"
#include "editor/kept_ready/view/completion_row.h"
#include "platform/view/accessible_role.h"
#include "platform/view/screen_reader.h"

#include <QGraphicsDropShadowEffect>
#include <QScrollBar>

#include <algorithm>

namespace kelm {

namespace {

constexpr float shadowOpacity = 0.33F;
constexpr qreal shadowRadius = 10;

} // namespace

AutoCompleteView::AutoCompleteView(AutoCompleteManager& manager, QWidget* parent)
    : QScrollArea(parent), manager_(manager), list_(new QWidget)
{
    setAccessibleRole(*list_, QAccessible::List);
    list_->setAccessibleName(tr("Suggestions"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidget(list_);
    // The colour of controls, in either appearance.
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    auto* shadow = new QGraphicsDropShadowEffect(this);
    shadow->setColor(QColor::fromRgbF(0, 0, 0, shadowOpacity));
    shadow->setBlurRadius(shadowRadius);
    shadow->setOffset(0, 0);
    setGraphicsEffect(shadow);
    connect(&manager, &AutoCompleteManager::suggestionsChanged, this, &AutoCompleteView::fill);
    connect(&manager, &AutoCompleteManager::selectedIndexChanged, this, &AutoCompleteView::showSelection);
    fill();
}

void AutoCompleteView::fill()
{
    qDeleteAll(rows_);
    rows_.clear();
    const QList<CompletionItem>& items = manager_.suggestions();
    const int height = static_cast<int>(items.size()) * rowHeight;
    setGeometry(0, 0, listWidth, std::min(height, greatestHeight));
    const int width = height > greatestHeight ? listWidth - verticalScrollBar()->sizeHint().width() : listWidth;
    list_->resize(width, height);
    for (qsizetype index = 0; index < items.size(); ++index) {
        auto* row = new CompletionRow(items[index], list_);
        row->setGeometry(0, static_cast<int>(index) * rowHeight, width, rowHeight);
        connect(row, &CompletionRow::clicked, this, [this, index] {
            manager_.setSelectedIndex(index);
            manager_.confirmSelection();
        });
        row->show();
        rows_.append(row);
    }
    showSelection();
}

void AutoCompleteView::showSelection()
{
    for (qsizetype index = 0; index < rows_.size(); ++index) {
        rows_[index]->setIsSelected(index == manager_.selectedIndex());
    }
    if (manager_.selectedIndex() >= 0 && manager_.selectedIndex() < rows_.size()) {
        ensureWidgetVisible(rows_[manager_.selectedIndex()], 0, 0);
        // The text keeps the keyboard while the keys go from row to row.
        QAccessibleEvent moved(list_, QAccessible::ActiveDescendantChanged);
        moved.setChild(static_cast<int>(manager_.selectedIndex()));
        screenReader::tell(moved);
    }
}

} // namespace kelm
