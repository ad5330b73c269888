#include "search/view/quick_open_view.h"

#include "app/state/app_state.h"
#include "platform/files/file_url.h"
#include "platform/style/view/icons.h"
#include "platform/text/platform_words.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_list.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "platform/view/plain_help.h"
#include "platform/view/screen_reader.h"
#include "search/quick_open.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QShortcut>
#include <QStyledItemDelegate>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int panelWidth = 600;
constexpr int shadowRadius = 20;
constexpr int rowHeight = 30;
constexpr int largestListHeight = 300;
/// From the panel's edge to a row's symbol.
constexpr int rowPadding = 16;
constexpr double selectionOpacity = 0.3;
constexpr int pathRole = Qt::UserRole;

} // namespace

/// An icon and the file's name.
class QuickOpenView::FileRowDelegate final : public QStyledItemDelegate
{
public:
    explicit FileRowDelegate(QuickOpenView& view) : QStyledItemDelegate(&view), view_(view) {}

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return {1, rowHeight}; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        constexpr int symbolSize = 16;
        const Appearance appearance = style::appearanceOf(*option.widget);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF box = QRectF(option.rect).adjusted(8, 1, -8, -1);
        if (index.row() == view_.selectedIndex_) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(Tint::accent().at(selectionOpacity).in(appearance));
            painter->drawRoundedRect(box, style::radius::control, style::radius::control);
        }
        icons::paint(*painter, u"doc"_s,
                     QRectF(box.left() + 8, box.center().y() - symbolSize / 2.0, symbolSize, symbolSize),
                     Tint::secondary().in(appearance));
        painter->setPen(Tint::primary().in(appearance));
        const QRectF place = box.adjusted(34, 0, -8, 0);
        painter->drawText(
            place, Qt::AlignVCenter | Qt::TextSingleLine,
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, static_cast<int>(place.width())));
        painter->restore();
    }

private:
    QuickOpenView& view_;
};

QuickOpenView::QuickOpenView(AppState& appState, QWidget* parent)
    : OverlayCard(panelWidth, shadowRadius, parent),
      appState_(appState),
      searchText_(new QLineEdit(this)),
      list_(new QListWidget(this)),
      noMatch_(
          new TextLabel(tr("No matching files"), style::interfaceFont(style::typeSize::body), Tint::secondary(), this))
{
    searchText_->setPlaceholderText(inPlatformWords(u"Go to file…  (Esc / ⌘W to close)"_s));
    searchText_->setAccessibleName(tr("Go to file"));
    searchText_->setFrame(false);
    searchText_->setFont(style::interfaceFont(16));
    searchText_->installEventFilter(this);
    setAccessibleName(tr("Go to file"));
    setFocusProxy(searchText_);
    auto* closeButton = new PlainButton(
        {.symbol = u"xmark.circle.fill"_s, .symbolSize = 16, .hoveredTint = Tint::primary(), .fixedSize = {24, 24}},
        this);
    closeButton->setHelp(inPlatformWords(u"Close (Esc / ⌘W)"_s));
    connect(closeButton, &PlainButton::clicked, this, &QuickOpenView::close);
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this);
    connect(shortcut, &QShortcut::activated, this, &QuickOpenView::close);

    setAccessibleItems(*list_, [this](int row) {
        const QListWidgetItem* item = list_->item(row);
        return AccessibleItem{.name = item->text(),
                              .description = item->data(pathRole).toString(),
                              .press = [this, row] { openRow(row); }};
    });
    list_->setItemDelegate(new FileRowDelegate(*this));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setSelectionMode(QAbstractItemView::NoSelection);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setAccessibleName(tr("Recent files"));
    list_->viewport()->setAutoFillBackground(false);
    connect(list_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { openRow(list_->row(item)); });

    auto* field = new QHBoxLayout;
    field->setContentsMargins(16, 12, 12, 12);
    field->addWidget(searchText_, 1);
    field->addWidget(closeButton);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 8);
    column->setSpacing(0);
    column->addLayout(field);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addSpacing(8);
    column->addWidget(list_);
    auto* told = new QHBoxLayout;
    told->setContentsMargins(rowPadding, 0, rowPadding, 0);
    told->addWidget(noMatch_);
    column->addLayout(told);

    noMatch_->setFixedHeight(rowHeight);
    noMatch_->hide();
    list_->setFixedHeight(largestListHeight);
    setMaximumHeight(sizeHint().height());
    connect(searchText_, &QLineEdit::textChanged, this, &QuickOpenView::fillList);
    connect(&appState_, &AppState::recentFilesChanged, this, &QuickOpenView::fillList);
    fillList();
}

QList<QUrl> QuickOpenView::filteredFiles() const
{
    return kelm::filteredFiles(appState_.recentFiles(), searchText_->text());
}

void QuickOpenView::fillList()
{
    list_->clear();
    for (const QUrl& url : filteredFiles()) {
        const QString path = shownName(url.toLocalFile());
        auto* item = new QListWidgetItem(shownName(lastPathComponent(url)), list_);
        item->setToolTip(plainHelp(path));
        item->setData(pathRole, path);
    }
    list_->setFixedHeight(std::min(list_->count() * rowHeight, largestListHeight));
    noMatch_->setVisible(list_->count() == 0 && !searchText_->text().isEmpty());
    showSelection();
}

void QuickOpenView::showSelection()
{
    if (selectedIndex_ < list_->count()) {
        list_->setCurrentRow(static_cast<int>(selectedIndex_));
    } else {
        list_->setCurrentItem(nullptr);
    }
    list_->viewport()->update();
    tellSelection();
}

void QuickOpenView::tellSelection()
{
    const QListWidgetItem* item = list_->currentItem();
    // The keyboard stays on the field, and what is told of the field is what is heard.
    searchText_->setAccessibleDescription(
        item == nullptr
            ? tr("No file")
            : tr("%1, %2 of %3")
                  .arg(item->text(), QString::number(list_->currentRow() + 1), QString::number(list_->count())));
    if (item != nullptr && screenReader::isListening()) {
        QAccessibleEvent moved(list_, QAccessible::ActiveDescendantChanged);
        moved.setChild(list_->currentRow());
        screenReader::tell(moved);
    }
}

bool QuickOpenView::handleKey(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        openRow(selectedIndex_);
        return true;
    case Qt::Key_Down:
        if (selectedIndex_ < list_->count() - 1) {
            ++selectedIndex_;
            showSelection();
        }
        return true;
    case Qt::Key_Up:
        if (selectedIndex_ >= 1) {
            --selectedIndex_;
            showSelection();
        }
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    default:
        return false;
    }
}

bool QuickOpenView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == searchText_ && event->type() == QEvent::KeyPress &&
        handleKey(static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    return OverlayCard::eventFilter(watched, event);
}

void QuickOpenView::openRow(qsizetype row)
{
    const QList<QUrl> files = filteredFiles();
    if (row >= 0 && row < files.size()) {
        appState_.openFile(files.at(row));
    }
    close();
}

void QuickOpenView::close()
{
    appState_.setShowQuickOpen(false);
}

} // namespace kelm
