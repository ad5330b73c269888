#include "run/view/output_view.h"

#include "editor/themes/theme_manager.h"
#include "platform/events/main_queue.h"
#include "platform/style/view/motion.h"
#include "platform/style/view/style.h"
#include "platform/view/focus_ring.h"
#include "run/view/end_follower.h"
#include "text/view/text_view.h"

#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int fontSize = 12;
constexpr qreal rowHeight = 16;
constexpr QSizeF outputInset(7, 8);
constexpr int anchorHeight = 1;
constexpr int scrollDurationMs = 100;
constexpr float placeholderAlpha = 0.55F;
const QString placeholder = u"No output"_s;

} // namespace

OutputView::OutputView(NotificationCenter& notifications, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent),
      themeManager_(themeManager),
      textView_(new TextView(this)),
      anchor_(new QWidget(textView_->viewport())),
      follower_(new EndFollower(*textView_, [this] { scrollToBottomAnchor(); })),
      trimmer_(textView_->storage())
{
    textView_->setReadOnly(true);
    textView_->setTextFont(style::monospaced(fontSize), rowHeight);
    textView_->setTextInset(outputInset);
    textView_->textLayout().setShowsControlCharacters(true);
    textView_->setAccessibleName(tr("Output"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(textView_);
    setFocusProxy(textView_);
    new FocusRing(*textView_);

    anchor_->setObjectName(bottomAnchor);
    anchor_->setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(textView_, &TextView::visibleRectChanged, this, &OutputView::placeBottomAnchor);

    scrolling_.setDuration(scrollDurationMs);
    scrolling_.setEasingCurve(QEasingCurve::Linear);
    connect(&scrolling_, &QVariantAnimation::valueChanged, this, [this](const QVariant& progress) {
        if (!follower_->isFollowing()) {
            scrolling_.stop();
            return;
        }
        // The end moves on while more text comes.
        const qreal end = textView_->pageHeight() - textView_->viewport()->height();
        textView_->scrollToY(scrollStart_ + (std::max(scrollStart_, end) - scrollStart_) * progress.toReal());
    });
    connect(&scrolling_, &QVariantAnimation::finished, this, [this] { follower_->scrollToEnd(); });
    scrolling_.setStartValue(0.0);
    scrolling_.setEndValue(1.0);

    connect(&themeManager, &ThemeManager::currentThemeChanged, this, &OutputView::refreshColors);
    refreshColors();
    showPlaceholder();
    notifications.addObserver(this, notifications::codeOutput, [this](const Notification& notification) {
        if (notification.object.metaType() == QMetaType::fromType<QString>()) {
            append(notification.object.toString());
        }
    });
    notifications.addObserver(this, notifications::clearOutput, [this](const Notification&) { clear(); });
}

OutputView::~OutputView() = default;

QString OutputView::output() const
{
    return isEmpty_ ? QString() : textView_->text();
}

void OutputView::append(const QString& text)
{
    TextStorage& storage = textView_->storage();
    if (!text.isEmpty()) {
        if (isEmpty_) {
            // What is selected of the placeholder is no part of the output.
            textView_->setSelectedRange({});
        }
        follower_->willAppend();
        if (std::exchange(isEmpty_, false)) {
            storage.setText(text);
        } else {
            storage.replace({storage.length(), 0}, text);
        }
    }
    follower_->didAppend();
    trimmer_.trim();
}

void OutputView::clear()
{
    scrolling_.stop();
    isEmpty_ = true;
    trimmer_.reset();
    // What was selected goes, and nothing of what comes is selected in its place.
    textView_->setSelectedRange({});
    follower_->resume();
    showPlaceholder();
}

void OutputView::showPlaceholder()
{
    TextStorage& storage = textView_->storage();
    const EditingBracket bracket(storage);
    storage.setText(placeholder);
    QColor color = textView_->colors().text;
    color.setAlphaF(color.alphaF() * placeholderAlpha);
    storage.setForeground({0, storage.length()}, color.rgba());
}

void OutputView::refreshColors()
{
    const EditorTheme& theme = themeManager_.currentTheme();
    TextViewColors colors = textView_->colors();
    colors.background = theme.backgroundColor.toColor();
    colors.text = theme.textColor.toColor();
    colors.insertionPoint = theme.cursorColor.toColor();
    colors.selection = theme.selectionColor.toColor();
    textView_->setColors(colors);
    if (isEmpty_) {
        showPlaceholder();
    }
}

// ---- Scrolling ------------------------------------------------------------------------------------------------------

void OutputView::scrollToBottomAnchor()
{
    if (std::exchange(isScrollQueued_, true)) {
        return;
    }
    onMainQueue(this, [this] {
        isScrollQueued_ = false;
        if (scrolling_.state() != QAbstractAnimation::Running && follower_->isFollowing()) {
            scrollStart_ = textView_->visibleRect().top();
            style::run(scrolling_);
        }
    });
}

void OutputView::placeBottomAnchor()
{
    const qreal bottom = textView_->pageHeight() - textView_->visibleRect().top();
    anchor_->setGeometry(0, qRound(std::min<qreal>(bottom, QWIDGETSIZE_MAX)) - anchorHeight,
                         textView_->viewport()->width(), anchorHeight);
}

} // namespace kelm
