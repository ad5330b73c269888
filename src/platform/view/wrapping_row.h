// A layout for rows of controls in a narrow panel.
#pragma once

#include <QLayout>
#include <QList>

#include <memory>

namespace kelm {

/// Items from left to right at the sizes they ask for, going on in a further line where the width is used up. Items
/// behind `alignRestRight` stand at the right end as long as they share a line with earlier ones.
class WrappingRow final : public QLayout
{
    Q_OBJECT

public:
    explicit WrappingRow(QWidget* parent = nullptr);
    ~WrappingRow() override;

    /// What is added from now on stands at the right.
    void alignRestRight() { rightFrom_ = items_.size(); }

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override { return items_.value(index); }
    QLayoutItem* takeAt(int index) override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    void setGeometry(const QRect& rectangle) override;
    Qt::Orientations expandingDirections() const override { return {}; }

private:
    /// Places the items, or only measures; the height that they take.
    int arrange(const QRect& rectangle, bool moves) const;
    void placeLine(const QRect& line, qsizetype from, qsizetype to, int used) const;

    QList<QLayoutItem*> items_;
    qsizetype rightFrom_ = -1;
};

} // namespace kelm
