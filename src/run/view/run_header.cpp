#include "run/view/run_header.h"

#include "platform/style/view/style.h"
#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"
#include "run/view/stop_run_key.h"

#include <QHBoxLayout>
#include <QPainter>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

/// With the same ends as the lines below it.
constexpr int headerHeight = 26;
constexpr QMargins headerMargins(12, 0, 8, 1);
constexpr int spacing = 16;
constexpr int textSize = 11;
constexpr double textOpacity = 0.85;
constexpr double edgeOpacity = 0.05;
constexpr std::chrono::seconds tickTime{1};

} // namespace

RunHeader::RunHeader(CodeRunner& runner, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent),
      runner_(runner),
      themeManager_(themeManager),
      label_(new TextLabel({}, style::interfaceFont(textSize), Tint::primary().at(textOpacity), this)),
      advice_(new TextLabel({}, style::interfaceFont(textSize), Tint::secondary(), this))
{
    setFixedHeight(headerHeight);
    setAccessibleRole(*this, QAccessible::Notification);
    ButtonLook look = borderedLook(u"stop.fill"_s);
    look.symbolSize = 9;
    look.textSize = textSize;
    look.padding = {8, 1, 8, 1};
    stop_ = new PlainButton(look, this);
    stop_->setText(tr("Stop"));
    stop_->setHelp(tr("Stop the run (%1)").arg(stopRunKey().toString(QKeySequence::NativeText)));
    connect(stop_, &PlainButton::clicked, &runner_, &CodeRunner::stop);
    label_->setElideMode(Qt::ElideMiddle);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(headerMargins);
    row->setSpacing(spacing);
    row->addWidget(label_);
    row->addWidget(advice_);
    row->addStretch(1);
    row->addWidget(stop_);
    tick_.setInterval(tickTime);
    tick_.setTimerType(Qt::PreciseTimer);
    connect(&tick_, &QTimer::timeout, this, &RunHeader::refreshTime);
    connect(&runner_, &CodeRunner::recordChanged, this, &RunHeader::refresh);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
    refresh();
}

QString RunHeader::text() const
{
    return label_->text();
}

QString RunHeader::advice() const
{
    return advice_->text();
}

void RunHeader::refresh()
{
    const auto& run = runner_.record();
    setVisible(run.has_value());
    if (!run) {
        tick_.stop();
        return;
    }
    const bool goesOn = !run->exit;
    stop_->setVisible(goesOn);
    advice_->setText(run->missedInput ? tr("A run reads no input here; use the terminal") : QString());
    advice_->setVisible(run->missedInput);
    if (goesOn) {
        refreshTime();
        tell(u"Running "_s + run->name);
    } else {
        label_->setText(endedText(*run));
        tell(run->missedInput ? text() + u". "_s + advice() : text());
    }
    if (goesOn && isVisible()) {
        tick_.start();
    } else {
        tick_.stop();
    }
}

void RunHeader::refreshTime()
{
    if (const auto& run = runner_.record(); run && !run->exit) {
        label_->setText(runningText(*run, std::chrono::round<std::chrono::seconds>(Clock::now() - run->began)));
    }
}

void RunHeader::tell(const QString& text)
{
    setAccessibleName(text);
    announce(*this);
}

void RunHeader::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    refreshTime();
    if (runner_.record() && !runner_.record()->exit) {
        tick_.start();
    }
}

void RunHeader::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    tick_.stop();
}

void RunHeader::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
    painter.fillRect(QRect(0, height() - 1, width(), 1), Tint::primary().at(edgeOpacity).on(*this));
}

} // namespace kelm
