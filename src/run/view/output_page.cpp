#include "run/view/output_page.h"

#include "run/view/output_view.h"
#include "run/view/run_header.h"

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
    setFocusProxy(output_);
}

} // namespace kelm
