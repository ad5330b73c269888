#include "workbench/view/tab_bar_view.h"

#include "platform/view/accessible_role.h"
#include "platform/view/plain_button.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/window_commands.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>

namespace kelm {

namespace {

constexpr int stripHeight = 40;
constexpr int endPadding = 8;
constexpr int tabSpacing = 2;
constexpr QSize newTabSize(28, 28);
constexpr double groundOpacity = 0.95;
constexpr double lineOpacity = 0.15;

} // namespace

TabBarView::TabBarView(AppState& appState, ThemeManager& themeManager, Workspace& workspace, QWidget* parent)
    : QWidget(parent),
      appState_(appState),
      themeManager_(themeManager),
      workspace_(workspace),
      scrollArea_(new QScrollArea(this))
{
    setFixedHeight(stripHeight);
    setAccessibleRole(*this, QAccessible::PageTabList);
    setAccessibleName(tr("Open documents"));

    auto* strip = new QWidget;
    row_ = new QHBoxLayout(strip);
    row_->setContentsMargins(endPadding, 0, endPadding, 0);
    row_->setSpacing(tabSpacing);
    newTabButton_ = new PlainButton({.symbol = QStringLiteral("plus"),
                                     .symbolSize = 11,
                                     .ground = Tint::primary().at(0.05),
                                     .fixedSize = newTabSize},
                                    strip);
    newTabButton_->setHelp(tr("New Tab"));
    connect(newTabButton_, &PlainButton::clicked, &appState_, &AppState::createNewTab);
    row_->addWidget(newTabButton_);
    row_->addStretch(1);

    scrollArea_->setWidget(strip);
    scrollArea_->setWidgetResizable(true);
    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setFocusPolicy(Qt::NoFocus);
    scrollArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The strip's own ground and line lie behind the tabs.
    scrollArea_->viewport()->setAutoFillBackground(false);
    strip->setAutoFillBackground(false);
    scrollArea_->viewport()->installEventFilter(this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 1);
    layout->addWidget(scrollArea_);

    connect(&appState_, &AppState::documentsChanged, this, &TabBarView::refreshDocuments);
    connect(&appState_, &AppState::currentDocumentIndexChanged, this, &TabBarView::refreshCurrentIndex);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    refreshDocuments();
}

QKeySequence TabBarView::keyOf(qsizetype index) const
{
    constexpr int numbered = int(Command::goToLastTab) - int(Command::goToTab1);
    if (index < numbered) {
        return windowKey(Command(int(Command::goToTab1) + int(index)));
    }
    return index == tabs_.size() - 1 ? QKeySequence(windowKey(Command::goToLastTab)) : QKeySequence();
}

TabItemView* TabBarView::makeTab(const std::shared_ptr<Document>& document)
{
    const auto index = [this, raw = document.get()] {
        qsizetype at = 0;
        for (const auto& open : appState_.documents()) {
            if (open.get() == raw) {
                return at;
            }
            ++at;
        }
        return qsizetype(-1);
    };
    const TabCallbacks callbacks{
        .onSelect = [this, index] { appState_.setCurrentDocumentIndex(index()); },
        .onClose = [this, index] { appState_.closeTab(index()); },
        .onCloseOthers = [this, index] { appState_.closeOtherTabs(index()); },
        .onCloseAll =
            [this] {
                appState_.setDocuments({});
                appState_.setCurrentDocumentIndex(0);
            },
        .onStep =
            [this, index](int step) {
                const qsizetype target = std::clamp<qsizetype>(index() + step, 0, tabs_.size() - 1);
                tabs_.at(target)->setFocus(Qt::TabFocusReason);
                scrollArea_->ensureWidgetVisible(tabs_.at(target), endPadding, 0);
            },
    };
    return new TabItemView(document, document == appState_.currentDocument(), callbacks, themeManager_, workspace_,
                           scrollArea_->widget());
}

void TabBarView::refreshDocuments()
{
    QHash<Document*, TabItemView*> old;
    for (TabItemView* tab : std::as_const(tabs_)) {
        old.insert(tab->document().get(), tab);
    }
    tabs_.clear();
    // Each tab that is shown would lay out the whole row.
    row_->setEnabled(false);
    for (const std::shared_ptr<Document>& document : appState_.documents()) {
        TabItemView* tab = old.take(document.get());
        if (tab == nullptr) {
            tab = makeTab(document);
        }
        if (row_->indexOf(tab) != tabs_.size()) {
            row_->removeWidget(tab);
            row_->insertWidget(static_cast<int>(tabs_.size()), tab);
        }
        tab->show();
        tabs_.append(tab);
    }
    for (TabItemView* gone : std::as_const(old)) {
        // It may be the one whose click is being answered.
        row_->removeWidget(gone);
        gone->hide();
        gone->deleteLater();
    }
    for (qsizetype index = 0; index < tabs_.size(); ++index) {
        tabs_.at(index)->setKey(keyOf(index));
    }
    row_->setEnabled(true);
    row_->activate();
    refreshCurrentIndex();
}

void TabBarView::refreshCurrentIndex()
{
    for (TabItemView* tab : std::as_const(tabs_)) {
        tab->setSelected(tab->document() == appState_.currentDocument());
    }
    // The row has its new extents when its layout has run.
    QTimer::singleShot(0, this, &TabBarView::scrollToSelected);
}

void TabBarView::scrollToSelected()
{
    const qsizetype index = appState_.currentDocumentIndex();
    if (index < 0 || index >= tabs_.size()) {
        return;
    }
    QWidget* const target = index == tabs_.size() - 1 ? static_cast<QWidget*>(newTabButton_) : tabs_.at(index);
    scrollArea_->ensureWidgetVisible(target, endPadding, 0);
    scrollArea_->ensureWidgetVisible(tabs_.at(index), endPadding, 0);
}

bool TabBarView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Wheel) {
        // A wheel turns up and down; the strip has sideways only.
        const auto* wheel = static_cast<QWheelEvent*>(event);
        const QPoint pixels = wheel->pixelDelta().isNull() ? wheel->angleDelta() / 2 : wheel->pixelDelta();
        QScrollBar* bar = scrollArea_->horizontalScrollBar();
        bar->setValue(bar->value() - (pixels.x() != 0 ? pixels.x() : pixels.y()));
        return true;
    }
    if (event->type() == QEvent::Resize) {
        // In a window that has become narrower the selected tab may lie outside.
        QTimer::singleShot(0, this, &TabBarView::scrollToSelected);
    }
    return QWidget::eventFilter(watched, event);
}

void TabBarView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QColor ground = themeManager_.currentTheme().backgroundColor.toColor();
    ground.setAlphaF(static_cast<float>(groundOpacity));
    painter.fillRect(rect(), ground);
    painter.fillRect(QRect(0, height() - 1, width(), 1), Tint::primary().at(lineOpacity).on(*this));
}

} // namespace kelm
