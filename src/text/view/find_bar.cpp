#include "text/view/find_bar.h"

#include "text/view/text_view.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int margin = 6;
constexpr int spacing = 4;
constexpr int fieldWidth = 260;
constexpr int statusWidth = 180;
/// The longest selection that is taken as the text looked for, in UTF-16 units.
constexpr qsizetype longestSelection = 1000;

bool isWithinALine(const QString& text)
{
    return !text.isEmpty() && !text.contains(u'\n') && !text.contains(u'\r') && !text.contains(QChar(0x2028)) &&
           !text.contains(QChar(0x2029)) && !text.contains(QChar(0x85));
}

} // namespace

FindBar::FindBar(TextView& view)
    : QFrame(&view),
      view_(view),
      session_(view.storage(), engine_),
      findField_(new QLineEdit(this)),
      replaceField_(new QLineEdit(this)),
      status_(new QLabel(this)),
      caseToggle_(makeToggle(QStringLiteral("Aa"), tr("Match case"))),
      wordToggle_(makeToggle(QStringLiteral("W"), tr("Whole words"))),
      patternToggle_(makeToggle(QStringLiteral(".*"), tr("Regular expression"))),
      replaceRow_(new QWidget(this))
{
    setAutoFillBackground(true);
    setFrameShape(QFrame::StyledPanel);
    setFocusProxy(findField_);
    buildRows();
    hide();

    connect(findField_, &QLineEdit::textChanged, this, [this](const QString& text) {
        engine_.setSearchText(text);
        restart();
    });
    connect(replaceField_, &QLineEdit::textChanged, &engine_, &SearchEngine::setReplaceText);
    connect(&session_, &FindSession::changed, this, &FindBar::showState);
    connect(&session_, &FindSession::replacedAll, this, &FindBar::putInAll);
    connect(&session_, &FindSession::stepEnded, this, [this](std::optional<TextRange> match) {
        select(match);
        if (isHidden()) {
            session_.stop();
        }
    });
    connect(&view_, &TextView::visibleRectChanged, this, [this] {
        if (isVisible()) {
            placeOverView();
            showHighlights();
        }
    });
    view_.installEventFilter(this);
    findField_->installEventFilter(this);
    replaceField_->installEventFilter(this);
}

void FindBar::open(bool withReplace)
{
    view_.commitComposition();
    const bool replaces = withReplace && !view_.isReadOnly();
    replaceRow_->setVisible(replaces);
    readSelection();
    origin_ = view_.selectedRange().location;
    show();
    raise();
    placeOverView();
    restart();
    findField_->setFocus(Qt::ShortcutFocusReason);
    findField_->selectAll();
}

void FindBar::close()
{
    hide();
    session_.stop();
    view_.setTopObscured(0);
    view_.setHighlights({});
    view_.setFocus(Qt::OtherFocusReason);
}

void FindBar::findNext()
{
    step([this] {
        // What is shown as the current match is stepped to first, and then the one behind it.
        const TextRange selected = view_.selectedRange();
        const std::optional<TextRange> current = session_.currentMatch();
        const bool isSelected = current && *current == selected;
        return session_.stepForward(isSelected ? FindQuery::behind(view_.storage().tree(), *current) : selected.end());
    });
}

void FindBar::findPrevious()
{
    step([this] { return session_.stepBackward(view_.selectedRange().location); });
}

void FindBar::step(const std::function<std::optional<TextRange>()>& find)
{
    if (engine_.searchText().isEmpty()) {
        return;
    }
    if (!isHidden()) {
        select(find());
        return;
    }
    // A search for this one step: without the bar nothing follows what is typed.
    session_.start(view_.selectedRange().location);
    select(find());
    if (!session_.isStepping()) {
        session_.stop();
    }
}

void FindBar::useSelection()
{
    readSelection();
    if (isVisible()) {
        restart();
    }
}

bool FindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &view_ && event->type() == QEvent::Resize) {
        placeOverView();
    }
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (watched == &view_) {
            // Further carets go first.
            if (key.key() == Qt::Key_Escape && isVisible() && view_.editor().selections().all().size() == 1) {
                close();
                return true;
            }
        } else if (handleFieldKey(watched, key)) {
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

bool FindBar::handleFieldKey(QObject* field, const QKeyEvent& key)
{
    if (key.key() != Qt::Key_Return && key.key() != Qt::Key_Enter) {
        return false;
    }
    if (field == replaceField_ && key.modifiers() == Qt::NoModifier) {
        replaceCurrent();
    } else if (key.modifiers().testFlag(Qt::ShiftModifier)) {
        findPrevious();
    } else {
        findNext();
    }
    return true;
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
    }
    // What no control of the bar takes ends here: given on, it would be typed into the text.
    event->accept();
}

bool FindBar::focusNextPrevChild(bool next)
{
    QWidget* const start = isAncestorOf(QApplication::focusWidget()) ? QApplication::focusWidget() : this;
    QWidget* candidate = start;
    do {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
        const bool isStop = isAncestorOf(candidate) && candidate->isVisible() && candidate->isEnabled() &&
                            (candidate->focusPolicy() & Qt::TabFocus) != 0;
        if (isStop) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (candidate != start);
    return true;
}

QToolButton* FindBar::makeButton(const QString& text, const QString& help)
{
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(help);
    button->setAccessibleName(help);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton* FindBar::makeToggle(const QString& text, const QString& help)
{
    QToolButton* button = makeButton(text, help);
    button->setCheckable(true);
    connect(button, &QToolButton::toggled, this, [this] { restart(); });
    return button;
}

void FindBar::buildRows()
{
    findField_->setPlaceholderText(tr("Find"));
    findField_->setAccessibleName(tr("Find"));
    findField_->setFixedWidth(fieldWidth);
    replaceField_->setPlaceholderText(tr("Replace"));
    replaceField_->setAccessibleName(tr("Replace"));
    replaceField_->setFixedWidth(fieldWidth);
    status_->setFixedWidth(statusWidth);
    status_->setTextFormat(Qt::PlainText);

    auto* findRow = new QHBoxLayout;
    findRow->setSpacing(spacing);
    QToolButton* previous = makeButton(QStringLiteral("‹"), tr("Previous match"));
    QToolButton* next = makeButton(QStringLiteral("›"), tr("Next match"));
    QToolButton* done = makeButton(tr("Done"), tr("Close the find bar"));
    for (QWidget* widget : std::initializer_list<QWidget*>{findField_, caseToggle_, wordToggle_, patternToggle_,
                                                           previous, next, status_}) {
        findRow->addWidget(widget);
    }
    findRow->addStretch();
    findRow->addWidget(done);

    auto* replaceLayout = new QHBoxLayout(replaceRow_);
    replaceLayout->setContentsMargins(0, 0, 0, 0);
    replaceLayout->setSpacing(spacing);
    QToolButton* replaceOne = makeButton(tr("Replace"), tr("Replace this match"));
    QToolButton* replaceEach = makeButton(tr("Replace All"), tr("Replace all matches"));
    replaceLayout->addWidget(replaceField_);
    replaceLayout->addWidget(replaceOne);
    replaceLayout->addWidget(replaceEach);
    replaceLayout->addStretch();

    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(spacing);
    rows->addLayout(findRow);
    rows->addWidget(replaceRow_);

    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(done, &QToolButton::clicked, this, &FindBar::close);
    connect(replaceOne, &QToolButton::clicked, this, &FindBar::replaceCurrent);
    connect(replaceEach, &QToolButton::clicked, this, &FindBar::replaceAll);
}

void FindBar::readSelection()
{
    const TextRange selected = view_.selectedRange();
    if (selected.length > longestSelection) {
        return;
    }
    const QString text = view_.storage().substring(selected);
    if (isWithinALine(text)) {
        engine_.setSearchText(text);
        findField_->setText(text);
    }
}

void FindBar::restart()
{
    engine_.setCaseSensitive(caseToggle_->isChecked());
    engine_.setWholeWord(wordToggle_->isChecked());
    engine_.setUseRegex(patternToggle_->isChecked());
    if (isHidden()) {
        return;
    }
    session_.start(origin_);
    if (const std::optional<TextRange> match = session_.currentMatch()) {
        view_.scrollRangeToVisible(*match);
    }
}

void FindBar::select(std::optional<TextRange> match)
{
    if (match) {
        view_.setSelectedRange(*match);
        view_.scrollRangeToVisible(*match);
        origin_ = match->location;
    }
    showState();
}

void FindBar::replaceCurrent()
{
    // What is folded away opens first: matches in the text on screen are not those in the text that is edited.
    if (!view_.editor().prepareEdit()) {
        return;
    }
    const std::optional<TextRange> match = session_.currentMatch();
    const std::optional<QString> replacement = session_.replacementForCurrent();
    if (!match || !replacement) {
        return;
    }
    origin_ = match->location + replacement->size();
    view_.editor().apply({{*match, *replacement}}, EditKind::other);
    // An empty match is not to be found again at the same place.
    if (match->isEmpty()) {
        origin_ = FindQuery::behind(view_.storage().tree(), {origin_, 0});
    }
    select(session_.stepForward(origin_));
}

void FindBar::replaceAll()
{
    if (!view_.editor().prepareEdit()) {
        return;
    }
    if (const std::optional<ReplaceAllResult> result = session_.replaceAll()) {
        putInAll(*result);
    } else {
        status_->setText(tr("Replacing…"));
    }
}

void FindBar::putInAll(const ReplaceAllResult& result)
{
    switch (result.outcome) {
    case ReplaceAllResult::Outcome::replaced:
        view_.editor().apply({{result.range, result.text}}, EditKind::other);
        status_->setText(tr("%1 replaced").arg(result.count));
        break;
    case ReplaceAllResult::Outcome::nothingFound:
        break;
    case ReplaceAllResult::Outcome::gaveUp:
        status_->setText(tr("Stopped: this pattern takes too long here"));
        break;
    case ReplaceAllResult::Outcome::tooLong:
        status_->setText(tr("The result would be too long"));
        break;
    }
}

void FindBar::showState()
{
    const QString text = session_.statusText();
    status_->setText(fontMetrics().elidedText(text, Qt::ElideRight, statusWidth));
    status_->setToolTip(text);
    if (isVisible()) {
        showHighlights();
    }
}

void FindBar::showHighlights()
{
    const std::vector<TextRow> rows = view_.visibleRows();
    if (rows.empty()) {
        return;
    }
    // Only what is on screen: a text can have a million matches.
    const TextRange shown = TextRange::between(rows.front().range.location, rows.back().range.end());
    session_.setShown(shown);
    const std::optional<TextRange> current = session_.currentMatch();
    std::vector<TextHighlight> highlights;
    for (const TextRange match : session_.matchesIn(shown)) {
        const bool isCurrent = current && match == *current;
        highlights.push_back({match, isCurrent ? view_.colors().currentMatch : view_.colors().match});
    }
    view_.setHighlights(std::move(highlights));
}

void FindBar::placeOverView()
{
    if (isHidden()) {
        return;
    }
    const int width = view_.viewport()->width();
    const int height = sizeHint().height();
    setGeometry(0, 0, width, height);
    view_.setTopObscured(height);
}

} // namespace kelm
