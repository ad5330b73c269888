// A layer over the whole window behind a view that wants all attention.
#pragma once

#include <QWidget>

#include <functional>

namespace kelm {

/// Dims what lies below it and takes every click; the view stands centred on it. A click beside the view, from the
/// press to the release, asks to be dismissed; one inside it stays there. The layer fills its parent.
class OverlayLayer final : public QWidget
{
    Q_OBJECT

public:
    /// Takes `content` as its child. `dimOpacity` is that of black, from 0 to 1.
    OverlayLayer(QWidget* content, double dimOpacity, std::function<void()> dismiss, QWidget* parent);

    QWidget* content() const { return content_; }

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

    QWidget* content_;
    double dimOpacity_;
    std::function<void()> dismiss_;
    bool isPressedBeside_ = false;
};

} // namespace kelm
