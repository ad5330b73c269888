// The map of a whole text at the right of it.
#pragma once

#include "app/language/language.h"
#include "editor/minimap/view/bar_layer.h"
#include "editor/themes/editor_theme.h"
#include "text/view/text_view.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace kelm {

/// A strip of one small bar per line, tinted by a glance at the line, with a box over the part on screen. A click or a
/// drag tells the line under the mouse. The bars follow the text at the cost of the lines that an edit changed.
class EditorMinimapView final : public QWidget
{
    Q_OBJECT

public:
    /// The height of a line at scale 1, and the width of a character; points.
    static constexpr qreal lineHeight = MinimapGeometry::lineHeight;
    static constexpr qreal charWidth = MinimapGeometry::charWidth;

    explicit EditorMinimapView(QWidget* parent = nullptr);

    TextView* textView() const { return textView_; }
    void setTextView(TextView* textView);
    /// Told for the owner's sake; painting does not look at it.
    Language language = Language::plainText;
    EditorTheme theme = EditorTheme::monokai();
    /// Called with a line, from 1.
    std::function<void(qsizetype)> onLineSelected;
    /// The part of the page on screen, in the text view's points.
    QRectF currentVisibleRect;

    /// Takes the theme's background for the strip and its border.
    void applyThemeToLayer();
    QColor getLineColor(QStringView line) const { return minimapLineColor(line, theme); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    const TextStorage* shownText() const;
    void selectLineAt(qreal y);

    QPointer<TextView> textView_;
    BarLayer bars_;
};

} // namespace kelm
