// The output page with what is told of the run above it.
#pragma once

#include "platform/events/notification_center.h"

#include <QWidget>

namespace kelm {

class CodeRunner;
class OutputView;
class RunHeader;
class ThemeManager;

/// The output of runs, below a row that tells of the latest one. Main thread only.
class OutputPage final : public QWidget
{
    Q_OBJECT

public:
    /// All of it outlives the page.
    OutputPage(CodeRunner& runner, NotificationCenter& notifications, ThemeManager& themeManager,
               QWidget* parent = nullptr);

    RunHeader& header() { return *header_; }
    OutputView& output() { return *output_; }

private:
    RunHeader* header_;
    OutputView* output_;
};

} // namespace kelm
