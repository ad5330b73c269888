// A gutter with line numbers, fold boxes and bookmarks.
#pragma once

#include "editor/folding/code_folding_manager.h"
#include "platform/events/notification_center.h"
#include "text/view/text_view.h"

#include <QColor>
#include <QFont>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <set>

namespace kelm {

/// The fuller gutter: bookmarks at its left edge, the caret's line in a colour of its own, and boxes with a plus or a
/// minus at its right edge. Bookmarks are known by their line number and live as long as the view. Kept ready: the
/// program's window shows `SimpleLineNumberView`.
class LineNumberView final : public QWidget
{
    Q_OBJECT

public:
    /// All in points: between number and fold boxes, and the widths of the areas at the right and the left edge.
    static constexpr qreal padding = 8.0;
    static constexpr qreal foldingAreaWidth = 14.0;
    static constexpr qreal bookmarkAreaWidth = 8.0;

    explicit LineNumberView(NotificationCenter& center, QWidget* parent = nullptr);

    QPointer<TextView> textView;
    QPointer<CodeFoldingManager> codeFoldingManager;
    QColor backgroundColor = QColor::fromRgbF(0.15F, 0.15F, 0.15F);
    QColor textColor = QColor::fromRgbF(0.5F, 0.5F, 0.5F);
    QColor currentLineColor = Qt::white;
    QFont font;
    /// Whether the boxes are painted; a click where they stand folds without them, too.
    bool showFoldingIndicators = true;
    /// Called after a fold was made or undone.
    std::function<void()> onFoldToggled;

    /// The lines, from 1, that are marked.
    const std::set<qsizetype>& bookmarks() const { return bookmarks_; }
    /// Marks a line or takes its mark away, and posts `bookmarksChanged` with the view as object and the line as
    /// "line".
    void toggleBookmark(qsizetype line);

    /// Paints the box of a row whose top is `y`: a plus where the region is folded, else a minus.
    void drawFoldingIndicator(QPainter& painter, qreal y, qreal height, bool isFolded) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void drawBookmark(QPainter& painter, qreal y, qreal height) const;
    void toggleFold(qsizetype line);

    NotificationCenter& center_;
    std::set<qsizetype> bookmarks_;
};

} // namespace kelm
