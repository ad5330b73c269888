#include "workbench/view/link_run_bar.h"

#include "app/state/link_runs.h"
#include "learning/lesson_texts.h"
#include "platform/style/view/style.h"
#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"

#include <QHBoxLayout>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int barHeight = 36;
constexpr int endPadding = 14;
constexpr int spacing = 8;
constexpr double groundOpacity = 0.12;
constexpr double edgeOpacity = 0.1;

} // namespace

LinkRunBar::LinkRunBar(bool isKo, ThemeManager& themeManager, Scheduler& scheduler, QWidget* parent)
    : QWidget(parent), themeManager_(themeManager), hearing_(scheduler, LinkRuns::deafTime, [this] { setHears(true); })
{
    setFixedHeight(barHeight);
    setAccessibleRole(*this, QAccessible::AlertMessage);
    setAccessibleName(lessonTexts::linkAsks.in(isKo));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(endPadding, 0, endPadding, 1);
    row->setSpacing(spacing);
    row->addWidget(new SymbolLabel(u"exclamationmark.triangle.fill"_s, 13, SystemColor::orange, this));
    row->addWidget(new TextLabel(lessonTexts::linkAsks.in(isKo), style::interfaceFont(style::typeSize::body - 1),
                                 Tint::primary(), this),
                   1);
    addButtons(isKo, *row);
    tellKey(isKo);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, qOverload<>(&QWidget::update));
}

void LinkRunBar::addButtons(bool isKo, QHBoxLayout& row)
{
    ButtonLook look = borderedLook();
    look.textSize = style::typeSize::body - 1;
    look.padding = {10, 3, 10, 3};
    buttons_ = {new PlainButton(look, this), new PlainButton(look, this),
                new PlainButton({.symbol = u"xmark"_s, .symbolSize = 9, .padding = {5, 4, 5, 4}}, this)};
    runButton()->setText(lessonTexts::linkRun.in(isKo));
    alwaysButton()->setText(lessonTexts::linkRunAlways.in(isKo));
    putAwayButton()->setHelp(lessonTexts::linkPutAway.in(isKo));
    connect(runButton(), &PlainButton::clicked, this, &LinkRunBar::run);
    connect(alwaysButton(), &PlainButton::clicked, this, &LinkRunBar::runAlways);
    connect(putAwayButton(), &PlainButton::clicked, this, &LinkRunBar::putAway);
    for (PlainButton* button : buttons_) {
        row.addWidget(button);
    }
    setHears(false);
}

void LinkRunBar::tellKey(bool isKo)
{
    setAccessibleDescription(lessonTexts::linkKey.in(isKo));
    runButton()->setHelp(lessonTexts::linkKey.in(isKo));
    alwaysButton()->setHelp(lessonTexts::linkRunAlwaysHelp.in(isKo));
}

void LinkRunBar::setHears(bool hears)
{
    for (PlainButton* button : buttons_) {
        button->setEnabled(hears);
    }
}

void LinkRunBar::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // Each time it comes up, as with its tab.
    setHears(false);
    hearing_.restart();
    announce(*this);
}

void LinkRunBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), themeManager_.currentTheme().backgroundColor.toColor());
    painter.fillRect(rect(), Tint(SystemColor::orange).at(groundOpacity).on(*this));
    painter.fillRect(QRect(0, height() - 1, width(), 1), Tint::primary().at(edgeOpacity).on(*this));
}

} // namespace kelm
