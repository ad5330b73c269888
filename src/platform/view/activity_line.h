// A thin line that shows that something works.
#pragma once

#include <QTimer>
#include <QWidget>

namespace kelm {

/// Two points high; a short piece in the accent colour runs along it while it is active, or the
/// line stands still and whole where nothing is to move.
class ActivityLine final : public QWidget
{
    Q_OBJECT

public:
    explicit ActivityLine(QWidget* parent = nullptr);

    bool isActive() const { return isActive_; }
    void setActive(bool isActive);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// While nothing goes on there is nothing to be told of.
    void tellState();

    bool isActive_ = false;
    QTimer timer_;
    int step_ = 0;
};

} // namespace kelm
