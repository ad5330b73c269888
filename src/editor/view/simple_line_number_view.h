// The strip left of the text: line numbers, fold triangles and the lesson's region.
#pragma once

#include "editor/folding/code_folding_manager.h"
#include "text/view/text_view.h"

#include <QColor>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

namespace kelm {

/// First and last line of a region, both from 1 and both inside.
struct LineRegion
{
    qsizetype first = 1;
    qsizetype last = 1;

    bool contains(qsizetype line) const { return line >= first && line <= last; }
    friend bool operator==(const LineRegion&, const LineRegion&) = default;
};

/// One number for each line of the text, at its first row; a triangle where a region can be folded. It keeps no table:
/// each painting asks the text view for the rows on screen.
class SimpleLineNumberView final : public QWidget
{
    Q_OBJECT

public:
    /// The width, in points, of the part with the triangles.
    static constexpr qreal foldIconWidth = 14.0;

    explicit SimpleLineNumberView(QWidget* parent = nullptr);

    QPointer<TextView> textView;
    QPointer<CodeFoldingManager> codeFoldingManager;
    QColor backgroundColor = QColor::fromRgbF(0.1F, 0.1F, 0.12F);
    QColor textColor = QColor(128, 128, 128);
    QColor foldIndicatorColor;
    std::optional<LineRegion> lessonRegion;
    QColor lessonHighlightColor;
    QColor lessonNumberColor;
    /// Called with a line, from 1, whose triangle was clicked.
    std::function<void(qsizetype)> onFoldToggle;

    /// Paints the triangle of a row whose top is `y`.
    void drawFoldIndicator(QPainter& painter, qreal y, qreal height, bool isFolded) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    std::optional<CodeFoldingManager::Mark> markAt(qsizetype line) const;
    /// The foldable line under a point, absent outside the triangles.
    std::optional<qsizetype> foldableLineAt(QPointF point) const;
    void refreshSystemColors();

    QColor foldedColor_;
};

} // namespace kelm
