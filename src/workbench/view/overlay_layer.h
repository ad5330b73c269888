// A layer over the whole window behind a view that wants all attention.
#pragma once

#include <QWidget>

#include <functional>

namespace kelm {

/// Dims what lies below it and takes every click; the view stands centred on it. A click beside the view, from the
/// press to the release, asks to be dismissed; one inside it stays there. The layer fills its parent.
///
/// A content with a greatest height stands so that it would be in the middle with that: its upper edge stays where it
/// is while it grows and shrinks.
class OverlayLayer final : public QWidget
{
    Q_OBJECT

public:
    /// Takes `content` as its child. `dimOpacity` is that of black, from 0 to 1.
    OverlayLayer(QWidget* content, double dimOpacity, std::function<void()> dismiss, QWidget* parent);

    QWidget* content() const { return content_; }
    /// A part of the window that is not covered while it is shown: it stays as light as it is and answers the pointer,
    /// and Tab goes on to it behind the content. A widget of the layer's parent, which outlives the layer.
    void setLeftFree(QWidget* part);
    /// What Tab does on the layer and on what is left free.
    void stepFocus(bool next);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    bool isBeside(const QPoint& place) const;
    void placeContent();
    void leaveFree();

    QWidget* content_;
    QWidget* free_ = nullptr;
    double dimOpacity_;
    std::function<void()> dismiss_;
    bool isPressedBeside_ = false;
};

} // namespace kelm
