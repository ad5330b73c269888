// Panels beside each other with borders that can be dragged.
#pragma once

#include <QSplitter>

namespace kelm {

/// A splitter with borders of one point, which never hides a panel. Screen readers know its borders for what they are.
class Splitter final : public QSplitter
{
    Q_OBJECT

public:
    explicit Splitter(Qt::Orientation orientation, QWidget* parent = nullptr);

protected:
    QSplitterHandle* createHandle() override;
};

} // namespace kelm
