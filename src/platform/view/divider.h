// A hairline between panels.
#pragma once

#include <QWidget>

namespace kelm {

/// A line of the primary colour at opacity 0.15, one point wide, that runs along the whole of its place.
class Divider final : public QWidget
{
    Q_OBJECT

public:
    explicit Divider(Qt::Orientation orientation, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace kelm
