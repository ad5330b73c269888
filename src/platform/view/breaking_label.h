// Text of any shape in a given width.
#pragma once

#include "platform/style/view/tint.h"

#include <QWidget>

namespace kelm {

/// Several lines of plain text, wrapped at words, and within a word that is wider than the label, such as a path or the
/// name of a branch. A menu copies it.
class BreakingLabel final : public QWidget
{
    Q_OBJECT

public:
    BreakingLabel(const QFont& font, const Tint& tint, QWidget* parent = nullptr);

    void setText(const QString& text);
    const QString& text() const { return text_; }
    /// The colour behind the text, with rounded corners.
    void setGround(const Tint& ground);
    void setPadding(int padding);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QString text_;
    Tint tint_;
    Tint ground_ = Tint::clear();
    int padding_ = 0;
};

} // namespace kelm
