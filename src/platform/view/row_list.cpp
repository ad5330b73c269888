#include "platform/view/row_list.h"

#include "platform/style/view/style.h"
#include "platform/view/accessible_row.h"
#include "platform/view/file_drag.h"
#include "platform/view/row_actions.h"
#include "platform/view/row_painter.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

constexpr int sideSpace = 4;
constexpr double hoverOpacity = 0.05;

} // namespace

class RowList::Delegate final : public QStyledItemDelegate
{
public:
    explicit Delegate(RowList& list) : QStyledItemDelegate(&list), list_(list) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const Appearance appearance = style::appearanceOf(list_);
        const int item = index.row();
        if (list_.model_.isTitle(item)) {
            paintSectionTitle(*painter, option.rect, list_.model_.shownTitleOf(item), appearance);
            return;
        }
        const Row row = list_.model_.rowAt(item);
        if (row.makeEditor) {
            return;
        }
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF box = QRectF(option.rect).adjusted(sideSpace, 0, -sideSpace, 0);
        if (item == list_.hoveredItem_ && row.onClick) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(Tint::primary().at(hoverOpacity).in(appearance));
            painter->drawRoundedRect(box, style::radius::chip, style::radius::chip);
        }
        if (item == list_.focusedItem_ && list_.hasFocus()) {
            style::drawFocusRing(*painter, box, style::radius::chip, list_);
        }
        paintRow(*painter, option.rect, row, list_.trailingSpace(item), appearance);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override
    {
        int height = list_.rowHeight_;
        if (list_.hasEditors_ && !list_.model_.isTitle(index.row())) {
            height = std::max(height, list_.model_.rowAt(index.row()).height);
        }
        return {0, height};
    }

private:
    RowList& list_;
};

RowList::RowList(int rowHeight, QWidget* parent)
    : QListView(parent),
      rowHeight_(rowHeight),
      hoveredActions_(new RowActions(false, viewport())),
      focusedActions_(new RowActions(true, viewport()))
{
    setFrameShape(QFrame::NoFrame);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setResizeMode(QListView::Adjust);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    setItemDelegate(new Delegate(*this));
    setModel(&model_);
    setAccessibleItems(*this, [this](int item) { return accessibleRow(model_, item); });
    hoveredActions_->hide();
    focusedActions_->hide();

    connect(this, &QListView::clicked, this, [this](const QModelIndex& index) { click(index.row()); });
    for (const RowActions* strip : {hoveredActions_, focusedActions_}) {
        connect(strip, &RowActions::pointerMoved, this, &RowList::notePointerMoved);
    }
    connect(focusedActions_, &RowActions::keyboardChanged, this, &RowList::updateActions);
    connect(focusedActions_, &RowActions::leftBackwards, this, [this] { setFocus(Qt::BacktabFocusReason); });
    connect(focusedActions_, &RowActions::leftForwards, this, [this] {
        setFocus(Qt::OtherFocusReason);
        QListView::focusNextPrevChild(true);
    });
    connect(focusedActions_, &RowActions::rowKeyPressed, this, [this](QKeyEvent* event) { keyPressEvent(event); });
}

RowList::~RowList()
{
    // The strips tell of the keyboard while they go.
    focusedActions_->disconnect(this);
}

void RowList::setSections(QList<RowSection> sections)
{
    const std::optional<Kept> kept = keptRow();
    const auto pointed = identityOf(pointer_ ? rowUnder(*pointer_) : -1);
    const auto focused = identityOf(currentIndex().row());
    const int scrolled = verticalScrollBar()->value();
    hoveredItem_ = -1;
    focusedItem_ = -1;
    model_.setSections(std::move(sections));
    if (hasEditors_) {
        makeEditors();
    }
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(scrolled);
    if (kept) {
        restore(*kept);
    }
    if (pointer_ && identityOf(rowUnder(*pointer_)) != pointed) {
        slidUnder_ = viewport()->mapToGlobal(*pointer_);
        takeMouse(false);
        hoveredActions_->cancelPress();
        focusedActions_->cancelPress();
    } else if (identityOf(currentIndex().row()) != focused) {
        focusedActions_->cancelPress();
    }
    setAccessibleDescription(model_.rowCount() == 0 ? placeholder_ : QString());
    updateActions();
    viewport()->update();
}

std::optional<std::pair<qsizetype, QString>> RowList::identityOf(int item) const
{
    if (!isUsable(item)) {
        return {};
    }
    const RowModel::Place place = model_.placeOf(item);
    return std::pair(qsizetype(place.section), model_.sections()[place.section].key(place.position));
}

void RowList::notePointerMoved(QPoint globalPlace)
{
    if (slidUnder_ && globalPlace != *slidUnder_) {
        slidUnder_.reset();
        takeMouse(true);
    }
}

void RowList::takeMouse(bool takes)
{
    hoveredActions_->setTakesMouse(takes);
    focusedActions_->setTakesMouse(takes);
}

std::optional<RowList::Kept> RowList::keptRow() const
{
    const QModelIndex current = currentIndex();
    if (!current.isValid() || model_.isTitle(current.row())) {
        return std::nullopt;
    }
    const RowModel::Place place = model_.placeOf(current.row());
    return Kept{place, model_.sections()[place.section].key(place.position)};
}

void RowList::restore(const Kept& kept)
{
    const QList<RowSection>& sections = model_.sections();
    RowModel::Place place = kept.place;
    if (place.section >= sections.size() || sections[place.section].count == 0) {
        const auto other = std::find_if(sections.begin(), sections.end(), [](const auto& s) { return s.count > 0; });
        if (other == sections.end()) {
            return;
        }
        place = {other - sections.begin(), 0};
    } else {
        const RowSection& section = sections[place.section];
        place.position = std::min(place.position, section.count - 1);
        if (section.key(place.position) != kept.key) {
            for (qsizetype i = 0; i < section.count; ++i) {
                if (section.key(i) == kept.key) {
                    place.position = i;
                    break;
                }
            }
        }
    }
    const int scrolled = verticalScrollBar()->value();
    setCurrentIndex(model_.index(model_.itemAt(place)));
    if (!isByKey_) {
        verticalScrollBar()->setValue(scrolled);
    }
}

void RowList::makeEditors()
{
    for (int item = 0; item < model_.rowCount(); ++item) {
        if (model_.isTitle(item)) {
            continue;
        }
        if (const Row row = model_.rowAt(item); row.makeEditor) {
            setIndexWidget(model_.index(item), row.makeEditor(viewport()));
        }
    }
}

void RowList::setPlaceholder(const QString& text)
{
    placeholder_ = text;
    setAccessibleDescription(model_.rowCount() == 0 ? placeholder_ : QString());
    viewport()->update();
}

void RowList::setHasEditors(bool hasEditors)
{
    hasEditors_ = hasEditors;
    setUniformItemSizes(!hasEditors);
}

bool RowList::isUsable(int item) const
{
    return item >= 0 && item < model_.rowCount() && !model_.isTitle(item);
}

int RowList::rowUnder(const QPoint& place) const
{
    const int item = indexAt(place).row();
    return isUsable(item) ? item : -1;
}

void RowList::updateActions()
{
    const int hovered = pointer_ ? rowUnder(*pointer_) : -1;
    const bool hasKeyboard = (hasFocus() && isByKey_) || focusedActions_->hasKeyboard();
    const int focused = hasKeyboard && isUsable(currentIndex().row()) ? currentIndex().row() : -1;
    const bool isChanged = hovered != hoveredItem_ || focused != focusedItem_;
    hoveredItem_ = hovered;
    focusedItem_ = focused;
    showActions(*focusedActions_, focused);
    showActions(*hoveredActions_, hovered == focused ? -1 : hovered);
    if (isChanged) {
        viewport()->update();
    }
}

void RowList::showActions(RowActions& strip, int item)
{
    const Row row = item >= 0 ? model_.rowAt(item) : Row();
    if (row.actions.isEmpty() || row.makeEditor) {
        const bool hadKeyboard = strip.hasKeyboard();
        strip.hide();
        strip.setActions({}, {});
        if (hadKeyboard) {
            setFocus(Qt::OtherFocusReason);
        }
        return;
    }
    const bool hadKeyboard = strip.hasKeyboard();
    strip.setActions(row.actions, row.help);
    const QRect place = visualRect(model_.index(item));
    const QSize size = strip.sizeHint();
    strip.setGeometry(place.right() - sideSpace - size.width(), place.center().y() - size.height() / 2 + 1,
                      size.width(), size.height());
    strip.show();
    if (hadKeyboard && !strip.hasKeyboard()) {
        setFocus(Qt::OtherFocusReason);
    }
}

int RowList::trailingSpace(int item) const
{
    if (item == focusedItem_ && focusedActions_->isVisible()) {
        return focusedActions_->width();
    }
    return item == hoveredItem_ && hoveredActions_->isVisible() ? hoveredActions_->width() : 0;
}

void RowList::click(int item)
{
    if (!isUsable(item)) {
        return;
    }
    // What is clicked may make the rows anew.
    if (const Row row = model_.rowAt(item); row.onClick) {
        row.onClick();
    }
}

bool RowList::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::Enter:
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        pointer_ = static_cast<QSinglePointEvent*>(event)->position().toPoint();
        notePointerMoved(static_cast<QSinglePointEvent*>(event)->globalPosition().toPoint());
        updateActions();
        break;
    case QEvent::Leave:
    case QEvent::HoverLeave:
        pointer_.reset();
        updateActions();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (slidUnder_) {
            event->accept();
            return true;
        }
        break;
    default:
        break;
    }
    return QListView::viewportEvent(event);
}

void RowList::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (model_.rowCount() > 0 || placeholder_.isEmpty()) {
        return;
    }
    QPainter painter(viewport());
    painter.setFont(RowFonts::standard().body);
    painter.setPen(Tint::secondary().on(*this));
    const QRect place = viewport()->rect().adjusted(8, 24, -8, 0);
    painter.drawText(place, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, placeholder_);
}

void RowList::resizeEvent(QResizeEvent* event)
{
    QListView::resizeEvent(event);
    updateActions();
}

void RowList::scrollContentsBy(int dx, int dy)
{
    QListView::scrollContentsBy(dx, dy);
    updateActions();
}

void RowList::mousePressEvent(QMouseEvent* event)
{
    isByKey_ = false;
    pressedAt_ = event->button() == Qt::LeftButton ? std::optional(event->pos()) : std::nullopt;
    QListView::mousePressEvent(event);
    updateActions();
}

void RowList::mouseMoveEvent(QMouseEvent* event)
{
    if (!pressedAt_ || !event->buttons().testFlag(Qt::LeftButton) ||
        (event->pos() - *pressedAt_).manhattanLength() < QApplication::startDragDistance()) {
        QListView::mouseMoveEvent(event);
        return;
    }
    const int item = rowUnder(*std::exchange(pressedAt_, std::nullopt));
    const QUrl file = item < 0 ? QUrl() : model_.fileAt(item);
    if (!file.isEmpty()) {
        dragFiles(*this, {file});
    }
}

void RowList::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
    const int item = isByMouse ? rowUnder(event->pos()) : currentIndex().row();
    if (!isUsable(item)) {
        return;
    }
    const QRect place = visualRect(model_.index(item));
    openMenu(item, isByMouse ? event->globalPos() : viewport()->mapToGlobal(place.center()));
}

void RowList::openMenu(int item, const QPoint& globalPlace)
{
    const Row row = model_.rowAt(item);
    if (row.makeEditor || (row.actions.isEmpty() && row.menu.isEmpty() && !row.onClick)) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (row.onClick) {
        menu->addAction(row.clickName, this, row.onClick);
    }
    for (const QList<RowAction>& actions : {row.actions, row.menu}) {
        if (!actions.isEmpty() && !menu->isEmpty()) {
            menu->addSeparator();
        }
        for (const RowAction& action : actions) {
            menu->addAction(action.help, this, action.run);
        }
    }
    menu->popup(globalPlace);
}

} // namespace kelm
