// New output, read out.
#pragma once

#include <QString>
#include <QTimer>
#include <QWidget>

#include <chrono>

namespace kelm {

class TextView;
struct TextEdit;

/// Has screen readers say what comes at the end of a text: once it has been quiet for `pause`, and of much that came
/// only the last `mostUnits`. Has no extents and shows nothing. Costs nothing while no screen reader listens. Main
/// thread only.
class SpokenOutput final : public QWidget
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds pause{400};
    static constexpr qsizetype mostUnits = 400;

    /// A child of the text's parent.
    SpokenOutput(TextView& text, QWidget* parent);

    /// What was said last.
    QString lastSaid() const { return accessibleName(); }
    /// What waits to be said.
    const QString& waiting() const { return waiting_; }

private:
    void hear(const TextEdit& edit);
    void say();

    TextView& text_;
    QString waiting_;
    bool isCut_ = false;
    QTimer quiet_;
};

} // namespace kelm
