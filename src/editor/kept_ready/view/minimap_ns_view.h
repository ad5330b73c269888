// A minimap that is given its text as a value.
#pragma once

#include "app/language/language.h"
#include "editor/minimap/view/bar_layer.h"
#include "editor/themes/editor_theme.h"
#include "platform/events/notification_center.h"
#include "text/storage/text_storage.h"

#include <QWidget>

namespace kelm {

/// The map of a text that belongs to nobody else: what is to be shown is copied in. A click or a drag posts
/// `navigateToLine` with the line, from 1, as object. Kept ready: the program's window shows `EditorMinimapView`.
class MinimapNSView final : public QWidget
{
    Q_OBJECT

public:
    /// The height of a line at scale 1, and the width of a character; points.
    static constexpr qreal lineHeight = MinimapGeometry::lineHeight;
    static constexpr qreal characterWidth = MinimapGeometry::charWidth;

    explicit MinimapNSView(NotificationCenter& center, QWidget* parent = nullptr);

    QString content() const { return content_.text(); }
    void setContent(const QString& content);

    EditorTheme theme = EditorTheme::monokai();
    /// Told for the owner's sake; painting does not look at it.
    Language language;
    /// The line, from 1, that is marked; none where the text has no such line.
    qsizetype cursorLine = 1;
    /// The part of the page on screen, in the text's points.
    QRectF visibleRangeRect;

    /// Takes the theme's background for the strip and its border.
    void applyThemeToLayer();
    QColor getLineColor(QStringView line) const { return minimapLineColor(line, theme); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void selectLineAt(qreal y);

    NotificationCenter& center_;
    TextStorage content_;
    BarLayer bars_;
};

} // namespace kelm
