// A choice of one of a few, side by side.
#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

class QRadioButton;

namespace kelm {

/// Segments of equal width in one frame, one of which is chosen, by mouse, by arrow keys and by screen readers, for
/// which it is a group of radio buttons.
class SegmentedPicker final : public QWidget
{
    Q_OBJECT

public:
    /// `name` is what is chosen here, for screen readers.
    SegmentedPicker(const QStringList& labels, const QString& name, QWidget* parent = nullptr);

    /// Counted from 0; the first is chosen at the start.
    int selectedIndex() const;
    void setSelectedIndex(int index);

Q_SIGNALS:
    /// Somebody chose another segment, or `setSelectedIndex` did.
    void selectionChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<QRadioButton*> segments_;
};

} // namespace kelm
