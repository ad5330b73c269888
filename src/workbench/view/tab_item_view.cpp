#include "workbench/view/tab_item_view.h"

#include "platform/desktop/workspace.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/motion.h"
#include "platform/text/platform_words.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_role.h"
#include "platform/view/file_drag.h"
#include "platform/view/plain_button.h"
#include "platform/view/plain_help.h"
#include "workbench/view/window_commands.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <array>

namespace kelm {

namespace {

constexpr int spacing = 8;
constexpr int horizontalPadding = 12;
constexpr int tabHeight = 32;
constexpr int chipSize = 20;
constexpr qreal chipRadius = 4;
constexpr int languageIconSize = 10;
constexpr int titleSize = 12;
constexpr int dotSize = 6;
constexpr int closeSize = 16;
constexpr int longestTitle = 280;
constexpr int hoverMilliseconds = 100;
constexpr int selectionMilliseconds = 150;

struct LanguageTint
{
    Language::Case language;
    SystemColor color;
};

constexpr std::array languageTints{
    LanguageTint{Language::swift, SystemColor::orange},    LanguageTint{Language::python, SystemColor::blue},
    LanguageTint{Language::typescript, SystemColor::blue}, LanguageTint{Language::javascript, SystemColor::yellow},
    LanguageTint{Language::json, SystemColor::green},      LanguageTint{Language::shell, SystemColor::green},
    LanguageTint{Language::xml, SystemColor::red},         LanguageTint{Language::html, SystemColor::red},
    LanguageTint{Language::css, SystemColor::purple},      LanguageTint{Language::markdown, SystemColor::cyan},
};

void prepare(QVariantAnimation& animation, int milliseconds, bool startsAtEnd, QWidget* widget)
{
    animation.setStartValue(0.0);
    animation.setEndValue(1.0);
    animation.setDuration(milliseconds);
    animation.setEasingCurve(QEasingCurve::InOutQuad);
    animation.setCurrentTime(startsAtEnd ? milliseconds : 0);
    QObject::connect(&animation, &QVariantAnimation::valueChanged, widget, [widget] { widget->update(); });
}

void run(QVariantAnimation& animation, bool forward)
{
    animation.setDirection(forward ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    style::run(animation);
}

} // namespace

Tint languageTint(Language language)
{
    for (const LanguageTint& entry : languageTints) {
        if (Language(entry.language) == language) {
            return entry.color;
        }
    }
    return Tint::secondary();
}

TabItemView::TabItemView(std::shared_ptr<Document> document, bool isSelected, TabCallbacks callbacks,
                         ThemeManager& themeManager, Workspace& workspace, QWidget* parent)
    : QWidget(parent),
      document_(std::move(document)),
      themeManager_(themeManager),
      workspace_(workspace),
      callbacks_(std::move(callbacks)),
      closeButton_(new PlainButton({.symbol = QStringLiteral("xmark"),
                                    .symbolSize = 9,
                                    .hoveredTint = Tint::primary(),
                                    .hoverOpacity = 0.1,
                                    .cornerRadius = style::radius::chip,
                                    .fixedSize = {closeSize, closeSize}},
                                   this)),
      isSelected_(isSelected)
{
    setFocusPolicy(isSelected ? Qt::TabFocus : Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleRole(*this, QAccessible::PageTab);
    tellSelection();
    prepare(hover_, hoverMilliseconds, false, this);
    prepare(selection_, selectionMilliseconds, isSelected, this);
    closeButton_->setFocusPolicy(Qt::NoFocus);
    connect(closeButton_, &PlainButton::clicked, this, [this] { callbacks_.onClose(); });
    connect(document_.get(), &Document::titleChanged, this, &TabItemView::refreshDocument);
    connect(document_.get(), &Document::languageChanged, this, qOverload<>(&QWidget::update));
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    refreshDocument();
    updateCloseButton();
}

void TabItemView::refreshDocument()
{
    const QString title = shownName(document_->title());
    setAccessibleName(title);
    QStringList more;
    if (document_->isModified()) {
        more.append(tr("modified"));
    }
    if (document_->fileURL()) {
        more.append(shownName(document_->fileURL()->path()));
    }
    setAccessibleDescription(more.join(QStringLiteral(", ")));
    refreshHelp();
    closeButton_->setAccessibleDescription(title);
    updateGeometry();
    update();
}

void TabItemView::setKey(const QKeySequence& key)
{
    if (key != key_) {
        key_ = key;
        refreshHelp();
    }
}

void TabItemView::refreshHelp()
{
    QStringList lines;
    if (document_->fileURL()) {
        lines.append(shownName(document_->fileURL()->path()));
    }
    if (!key_.isEmpty()) {
        lines.append(key_.toString(QKeySequence::NativeText));
    }
    setToolTip(plainHelp(lines.join(u'\n')));
    closeButton_->setHelp(tr("Close"));
    if (isSelected_) {
        const QString key = QKeySequence(windowKey(Command::closeTab)).toString(QKeySequence::NativeText);
        closeButton_->setToolTip(tr("Close (%1)").arg(key));
    }
}

void TabItemView::setSelected(bool isSelected)
{
    if (isSelected == isSelected_) {
        return;
    }
    isSelected_ = isSelected;
    tellSelection();
    // Tab reaches the selected tab, and arrow keys the others from there.
    setFocusPolicy(isSelected ? Qt::TabFocus : Qt::NoFocus);
    run(selection_, isSelected);
    refreshHelp();
    updateCloseButton();
    updateGeometry();
    update();
}

void TabItemView::tellSelection()
{
    QAccessible::State state;
    state.selectable = true;
    state.selected = isSelected_;
    setAccessibleState(*this, state);
}

void TabItemView::press()
{
    callbacks_.onSelect();
}

void TabItemView::setHovered(bool isHovered)
{
    isHovered_ = isHovered;
    run(hover_, isHovered);
    updateCloseButton();
}

void TabItemView::updateCloseButton()
{
    // Without its symbol it still keeps its place.
    closeButton_->setSymbol(isHovered_ || isSelected_ ? QStringLiteral("xmark") : QString());
}

QFont TabItemView::titleFont() const
{
    return style::interfaceFont(titleSize, isSelected_ ? QFont::Medium : QFont::Normal);
}

QSize TabItemView::sizeHint() const
{
    // The room of the medium weight at all times, so that a selection moves nothing.
    const QFontMetrics metrics(style::interfaceFont(titleSize, QFont::Medium));
    const int title = std::min(metrics.horizontalAdvance(shownName(document_->title())) + 1, longestTitle);
    const int dot = document_->isModified() ? dotSize + spacing : 0;
    return {2 * horizontalPadding + chipSize + spacing + title + spacing + dot + closeSize, tabHeight};
}

void TabItemView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    closeButton_->setGeometry(width() - horizontalPadding - closeSize, (height() - closeSize) / 2, closeSize,
                              closeSize);
}

void TabItemView::paintGround(QPainter& painter) const
{
    const QRectF box = QRectF(rect());
    const double selection = selection_.currentValue().toDouble();
    const double hover = hover_.currentValue().toDouble();
    if (selection > 0) {
        painter.setBrush(Tint(themeManager_.currentTheme().currentLineColor.toColor()).at(selection).on(*this));
        painter.drawRoundedRect(box, style::radius::control, style::radius::control);
        painter.fillRect(
            QRectF(box.left() + style::radius::control, box.bottom() - 1, box.width() - 2 * style::radius::control, 1),
            Tint::primary().at(0.2 * selection).on(*this));
    }
    if (hover > 0 && !isSelected_) {
        painter.setBrush(Tint::primary().at(0.05 * hover).on(*this));
        painter.drawRoundedRect(box, style::radius::control, style::radius::control);
    }
}

void TabItemView::paintChip(QPainter& painter, const QRectF& chip) const
{
    const Tint tint = languageTint(document_->language());
    painter.setBrush(tint.at(isSelected_ ? 0.2 : 0.1).on(*this));
    painter.drawRoundedRect(chip, chipRadius, chipRadius);
    const qreal inset = (chipSize - languageIconSize) / 2.0;
    icons::paint(painter, document_->language().iconName(), chip.adjusted(inset, inset, -inset, -inset),
                 style::ink(tint, *this));
}

void TabItemView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    paintGround(painter);
    paintChip(painter, QRectF(horizontalPadding, (height() - chipSize) / 2.0, chipSize, chipSize));

    int right = closeButton_->x() - spacing;
    if (document_->isModified()) {
        painter.setBrush(Tint(SystemColor::orange).on(*this));
        painter.drawEllipse(QRectF(right - dotSize, (height() - dotSize) / 2.0, dotSize, dotSize));
        right -= dotSize + spacing;
    }
    const int left = horizontalPadding + chipSize + spacing;
    painter.setFont(titleFont());
    painter.setPen((isSelected_ ? Tint::primary() : Tint::secondary()).on(*this));
    const QString title =
        QFontMetrics(titleFont()).elidedText(shownName(document_->title()), Qt::ElideMiddle, right - left + 1);
    painter.drawText(QRect(left, 0, right - left + 1, height()), Qt::AlignVCenter | Qt::TextSingleLine, title);
    if (hasFocus()) {
        style::drawFocusRing(painter, QRectF(rect()), style::radius::control, *this);
    }
}

void TabItemView::enterEvent(QEnterEvent* event)
{
    QWidget::enterEvent(event);
    setHovered(true);
}

void TabItemView::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
    setHovered(false);
}

void TabItemView::mousePressEvent(QMouseEvent* event)
{
    isMiddlePressed_ = event->button() == Qt::MiddleButton;
    pressedAt_.reset();
    if (event->button() == Qt::LeftButton) {
        pressedAt_ = event->pos();
        callbacks_.onSelect();
    }
}

void TabItemView::mouseMoveEvent(QMouseEvent* event)
{
    const std::optional<QUrl> url = document_->fileURL();
    if (!pressedAt_ || !event->buttons().testFlag(Qt::LeftButton) || !url ||
        (event->pos() - *pressedAt_).manhattanLength() < QApplication::startDragDistance()) {
        return;
    }
    pressedAt_.reset();
    dragFiles(*this, {*url});
}

void TabItemView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton && isMiddlePressed_ && rect().contains(event->pos())) {
        callbacks_.onClose();
    }
}

void TabItemView::keyPressEvent(QKeyEvent* event)
{
    // A key that is held down selects or closes one tab.
    const bool isPress = !event->isAutoRepeat();
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (isPress) {
            callbacks_.onSelect();
        }
        break;
    case Qt::Key_Left:
        callbacks_.onStep(-1);
        break;
    case Qt::Key_Right:
        callbacks_.onStep(1);
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (isPress) {
            callbacks_.onClose();
        }
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void TabItemView::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillContextMenu(*menu);
    menu->popup(event->globalPos());
}

void TabItemView::fillContextMenu(QMenu& menu)
{
    menu.addAction(QStringLiteral("Close"), this, callbacks_.onClose);
    menu.addAction(QStringLiteral("Close Others"), this, callbacks_.onCloseOthers);
    menu.addAction(QStringLiteral("Close All"), this, callbacks_.onCloseAll);
    menu.addSeparator();
    const std::optional<QUrl> url = document_->fileURL();
    QAction* copy = menu.addAction(QStringLiteral("Copy Path"), this,
                                   [url] { QGuiApplication::clipboard()->setText(url->toLocalFile()); });
    QAction* reveal = menu.addAction(inPlatformWords(QStringLiteral("Reveal in Finder")), this,
                                     [this, url] { workspace_.reveal(*url); });
    copy->setEnabled(url.has_value());
    reveal->setEnabled(url.has_value());
}

void TabItemView::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void TabItemView::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace kelm
