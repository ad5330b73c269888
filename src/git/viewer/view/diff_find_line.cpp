#include "git/viewer/view/diff_find_line.h"

#include "git/viewer/view/diff_list.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimerEvent>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int fieldWidth = 260;
/// What is looked through between two looks at what a person does: a few milliseconds.
constexpr qsizetype unitsOfASlice = 1'000'000;

} // namespace

DiffFindLine::DiffFindLine(DiffList& list, std::function<void(const QUuid&)> toggleHunk, QWidget* parent)
    : QWidget(parent),
      list_(list),
      toggleHunk_(std::move(toggleHunk)),
      field_(makePanelField(tr("Find in diff"), this)),
      told_(new TextLabel({}, style::interfaceFont(style::typeSize::caption), Tint::secondary(), this))
{
    field_->setFixedWidth(fieldWidth);
    connect(field_, &QLineEdit::textEdited, this, [this] { start(true, true); });
    PlainButton* previous = makeSymbolButton(u"chevron.left"_s, tr("Find previous (Shift+F3)"), this);
    PlainButton* next = makeSymbolButton(u"chevron.right"_s, tr("Find next (F3)"), this);
    PlainButton* close = makeSymbolButton(u"xmark"_s, tr("Close (Esc)"), this);
    connect(previous, &QAbstractButton::clicked, this, [this] { find(false); });
    connect(next, &QAbstractButton::clicked, this, [this] { find(true); });
    connect(close, &QAbstractButton::clicked, this, &DiffFindLine::closed);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 4, 12, 4);
    row->setSpacing(4);
    row->addWidget(field_);
    row->addWidget(previous);
    row->addWidget(next);
    row->addWidget(told_, 1);
    row->addWidget(close);
}

DiffFindLine::~DiffFindLine() = default;

QString DiffFindLine::told() const
{
    return told_->text();
}

void DiffFindLine::takeKeyboard()
{
    if (const QString selected = list_.selectedText(); !selected.isEmpty() && !selected.contains(u'\n')) {
        field_->setText(selected);
    }
    field_->selectAll();
    field_->setFocus(Qt::ShortcutFocusReason);
}

void DiffFindLine::find(bool forwards)
{
    if (isVisible() || !field_->text().isEmpty()) {
        start(forwards, false);
    }
}

void DiffFindLine::start(bool forwards, bool again)
{
    stop();
    told_->setText({});
    if (field_->text().isEmpty()) {
        list_.clearSelection();
        return;
    }
    DiffTextPlace from;
    auto side = SideBySideHunkLines::Side::oldSide;
    if (const std::optional<DiffSelection>& selected = list_.selection()) {
        const auto [first, last] = std::minmax(selected->anchor, selected->caret);
        from = forwards && !again ? last : first;
        side = selected->side;
    } else {
        from = list_.textAt({0, 0}).first;
    }
    search_.emplace(list_.diffLayout(), field_->text(), from, side,
                    forwards ? DiffSearch::Direction::forwards : DiffSearch::Direction::backwards);
    look();
}

void DiffFindLine::stop()
{
    timer_.stop();
    search_.reset();
}

void DiffFindLine::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == timer_.timerId()) {
        look();
    }
}

void DiffFindLine::look()
{
    switch (search_->look(unitsOfASlice)) {
    case DiffSearch::State::looking:
        if (!timer_.isActive()) {
            told_->setText(tr("Searching…"));
            timer_.start(0, this);
        }
        return;
    case DiffSearch::State::found:
        told_->setText(search_->hasWrapped() ? tr("Went on at the other end") : QString());
        reveal(*search_->match());
        break;
    case DiffSearch::State::nothing:
        told_->setText(tr("Not found"));
        list_.clearSelection();
        break;
    }
    stop();
}

void DiffFindLine::reveal(const DiffSelection& match)
{
    const DiffTextPlace place = match.anchor;
    if (place.hunk >= 0 && list_.diffLayout().isCollapsed(place.file, place.hunk)) {
        toggleHunk_(list_.diffLayout().files()[place.file].hunks[place.hunk].id);
    }
    list_.select(match);
    list_.scrollTo(place);
}

void DiffFindLine::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        find(!event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    case Qt::Key_Escape:
        // The sheet stays.
        Q_EMIT closed();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace kelm
