#include "learning/view/environment_row.h"

#include "learning/export_line.h"
#include "learning/lesson_texts.h"
#include "learning/view/lesson_section.h"
#include "platform/text/shown_name.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr std::chrono::milliseconds copiedTime(1500);
constexpr int symbolSize = 12;
constexpr int smallSize = 10;
constexpr qsizetype mostShown = 200;

} // namespace

EnvRow::EnvRow(const QString& key, bool isSet, bool isKo, std::function<void()> onCopy, Scheduler& scheduler,
               QWidget* parent)
    : QWidget(parent),
      key_(key),
      isSet_(isSet),
      isKo_(isKo),
      onCopy_(std::move(onCopy)),
      copiedEnd_(scheduler, copiedTime, [this] { setCopied(false); })
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    auto* first = new QHBoxLayout;
    first->setSpacing(6);
    first->addWidget(new SymbolLabel(isSet ? u"checkmark.circle.fill"_s : u"xmark.circle.fill"_s, symbolSize,
                                     isSet ? SystemColor::green : SystemColor::red, this));
    auto* name = new TextLabel(shownName(shownPart(key, mostShown)), style::monospaced(11), Tint::primary(), this);
    name->setElideMode(Qt::ElideMiddle);
    first->addWidget(name, 1);
    column->addLayout(first);
    if (isSet) {
        return;
    }
    copyButton_ = new PlainButton({.textSize = smallSize, .tint = Tint::accent(), .padding = {4, 1, 4, 1}}, this);
    connect(copyButton_, &PlainButton::clicked, this, &EnvRow::copyExport);
    setCopied(false);
    auto* second = new QHBoxLayout;
    second->setContentsMargins(symbolSize + 2, 0, 0, 0);
    second->addWidget(copyButton_);
    second->addStretch(1);
    column->addLayout(second);
    auto* where = new WrappedLabel(lessonTexts::whereToGetKey(key, isKo), style::interfaceFont(smallSize),
                                   Tint::secondary(), this);
    where->setContentsMargins(symbolSize + 6, 0, 0, 0);
    column->addWidget(where);
}

void EnvRow::copyExport()
{
    QGuiApplication::clipboard()->setText(exportLine(key_));
    setCopied(true);
    copiedEnd_.restart();
}

void EnvRow::setCopied(bool copied)
{
    copied_ = copied;
    copyButton_->setText((copied ? lessonTexts::copied : lessonTexts::copyExport).in(isKo_));
    copyButton_->updateGeometry();
}

} // namespace kelm
