#include "run/view/output_page.h"

#include "run/code_runner.h"
#include "run/view/output_view.h"
#include "run/view/run_header.h"
#include "run/view/spoken_output.h"
#include "text/view/text_view.h"
#include "text/view/text_view_accessible.h"

#include <QVBoxLayout>

namespace kelm {

OutputPage::OutputPage(CodeRunner& runner, NotificationCenter& notifications, ThemeManager& themeManager,
                       QWidget* parent)
    : QWidget(parent),
      header_(new RunHeader(runner, themeManager, this)),
      output_(new OutputView(notifications, themeManager, this))
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(header_);
    column->addWidget(output_, 1);
    new SpokenOutput(output_->textView(), this);
    const auto followRun = [this, &runner] { setAccessibleTextBusy(output_->textView(), runner.isRunning()); };
    connect(&runner, &CodeRunner::isRunningChanged, this, followRun);
    followRun();
    setFocusProxy(output_);
}

} // namespace kelm
