#include "learning/view/requirement_list.h"

#include "learning/lesson_texts.h"
#include "learning/view/environment_row.h"
#include "platform/view/plain_button.h"

#include <QEvent>
#include <QLayout>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

constexpr int spacing = 8;
/// So far beyond what is seen rows are there for the Tab key.
constexpr int margin = 120;

int heightFor(const EnvRow& row, int width)
{
    const QLayout& layout = *row.layout();
    return layout.hasHeightForWidth() ? layout.heightForWidth(width) : layout.sizeHint().height();
}

} // namespace

RequirementList::RequirementList(QScrollArea& area, std::function<void()> onCopy, Scheduler& scheduler, QWidget* parent)
    : QWidget(parent), area_(area), onCopy_(std::move(onCopy)), scheduler_(scheduler)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    const QScrollBar* bar = area_.verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, &RequirementList::follow);
    connect(bar, &QScrollBar::rangeChanged, this, &RequirementList::follow);
}

void RequirementList::show(const QStringList& keys, const QHash<QString, bool>& areSet, bool isKo)
{
    const bool isAnother = keys != keys_ || isKo != isKo_;
    keys_ = keys;
    areSet_ = areSet;
    isKo_ = isKo;
    if (isAnother) {
        heights_.clear();
    }
    for (auto row = rows_.begin(); row != rows_.end();) {
        if (!isAnother && row->second->isSet() == isSet(keys_[row->first])) {
            ++row;
            continue;
        }
        row->second->hide();
        row->second->deleteLater();
        row = rows_.erase(row);
    }
    setVisible(!keys_.isEmpty());
    placeRows();
}

int RequirementList::heightOf(const QString& key, bool isSet)
{
    // Rows differ by what they say below the name, and not by the name.
    const QString kind = isSet ? QString() : lessonTexts::whereToGetKey(key, isKo_);
    const auto known = heights_.constFind(kind);
    if (known != heights_.cend()) {
        return *known;
    }
    const EnvRow sample(key, isSet, isKo_, {}, scheduler_);
    return *heights_.insert(kind, heightFor(sample, width()));
}

void RequirementList::placeRows()
{
    tops_.assign(1, 0);
    tops_.reserve(static_cast<std::size_t>(keys_.size()) + 1);
    for (const QString& key : std::as_const(keys_)) {
        tops_.push_back(tops_.back() + heightOf(key, isSet(key)) + spacing);
    }
    setFixedHeight(std::max(0, tops_.back() - spacing));
    follow();
}

void RequirementList::follow()
{
    const int top = mapFrom(area_.viewport(), QPoint()).y() - margin;
    const int bottom = top + area_.viewport()->height() + 2 * margin;
    const auto first = std::upper_bound(tops_.begin(), tops_.end(), top) - tops_.begin() - 1;
    const auto last = std::lower_bound(tops_.begin(), tops_.end(), bottom) - tops_.begin();
    const qsizetype from = std::clamp<qsizetype>(first, 0, keys_.size());
    const qsizetype to = std::clamp<qsizetype>(last, from, keys_.size());
    std::erase_if(rows_, [from, to](const auto& entry) {
        const auto& [index, row] = entry;
        // One that has the keyboard keeps it, and one that says something says it to the end.
        const bool goes =
            (index < from || index >= to) && !row->copied() && !row->isAncestorOf(row->window()->focusWidget());
        if (goes) {
            row->hide();
            row->deleteLater();
        }
        return goes;
    });
    bool isAnyNew = false;
    for (qsizetype index = from; index < to; ++index) {
        EnvRow*& row = rows_[index];
        if (row == nullptr) {
            row = makeRow(index);
            isAnyNew = true;
        }
    }
    for (const auto& [index, row] : rows_) {
        const auto place = static_cast<std::size_t>(index);
        row->setGeometry(0, tops_[place], width(), tops_[place + 1] - tops_[place] - spacing);
    }
    if (isAnyNew) {
        orderKeyboard();
    }
}

EnvRow* RequirementList::makeRow(qsizetype index)
{
    auto* row = new EnvRow(keys_[index], isSet(keys_[index]), isKo_, onCopy_, scheduler_, this);
    row->show();
    return row;
}

void RequirementList::orderKeyboard()
{
    QWidget* before = nullptr;
    for (const auto& [index, row] : rows_) {
        QWidget* const stop = row->copyButton();
        if (stop != nullptr && before != nullptr) {
            setTabOrder(before, stop);
        }
        before = stop != nullptr ? stop : before;
    }
}

void RequirementList::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        heights_.clear();
        placeRows();
    } else {
        follow();
    }
}

void RequirementList::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::StyleChange) {
        heights_.clear();
        placeRows();
    }
    QWidget::changeEvent(event);
}

} // namespace kelm
