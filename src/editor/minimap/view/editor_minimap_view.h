// The map of a whole text at the right of it.
#pragma once

#include "app/language/language.h"
#include "editor/minimap/minimap_bars.h"
#include "editor/themes/editor_theme.h"
#include "text/view/text_view.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace kelm {

/// A strip of one small bar per line, tinted by a glance at the line, with a box over the part on screen. A click or a
/// drag tells the line under the mouse. Every painting looks at the text anew: between the events after which the owner
/// asks for one, the bars lag behind typing.
class EditorMinimapView final : public QWidget
{
    Q_OBJECT

public:
    explicit EditorMinimapView(QWidget* parent = nullptr);

    QPointer<TextView> textView;
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
};

} // namespace kelm
