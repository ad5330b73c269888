// A rounded ground behind what it holds.
#pragma once

#include <QWidget>

namespace kelm {

/// A group of the welcome: its children stand on a tenth of the secondary colour.
class RoundedGroup : public QWidget
{
    Q_OBJECT

public:
    explicit RoundedGroup(QWidget* parent) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace kelm
