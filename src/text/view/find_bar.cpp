#include "text/view/find_bar.h"

#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "text/view/text_view.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolButton>

namespace kelm {

namespace {

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
      searched_(view),
      session_(searched_.storage(), engine_),
      findField_(new QLineEdit(this)),
      replaceField_(new QLineEdit(this)),
      status_(new QLabel(this)),
      caseToggle_(makeToggle(QStringLiteral("Aa"), tr("Match case"))),
      wordToggle_(makeToggle(QStringLiteral("W"), tr("Whole words"))),
      patternToggle_(makeToggle(QStringLiteral(".*"), tr("Regular expression"))),
      replaceRow_(new QWidget(this)),
      options_(new QWidget(this)),
      replaceButtons_(new QWidget(replaceRow_))
{
    setAutoFillBackground(true);
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(tr("Find"));
    setAccessibleRole(*status_, QAccessible::Notification);
    setFocusProxy(findField_);
    buildRows();
    hide();

    connect(findField_, &QLineEdit::textChanged, this, [this](const QString& text) {
        engine_.setSearchText(text);
        restart();
    });
    connect(replaceField_, &QLineEdit::textChanged, &engine_, &SearchEngine::setReplaceText);
    connect(&searched_, &SearchedText::moved, this, [this] { session_.searchIn(searched_.storage()); });
    connect(&searched_, &SearchedText::replaced, this, [this] {
        session_.searchIn(searched_.storage());
        restart();
    });
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
    origin_ = searched_.selectedRange().location;
    const CaretPlace caret = view_.editor().selections().primary().head;
    const bool isInSight = view_.viewport()->rect().contains(view_.caretRect(caret).center().toPoint());
    show();
    raise();
    // The type may be another by now.
    fittedWidth_ = -1;
    placeOverView();
    if (isInSight) {
        // At the lower edge, the bar has pushed its line out.
        view_.scrollRangeToVisible({caret.offset, 0});
    }
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
        const TextRange selected = searched_.selectedRange();
        const std::optional<TextRange> current = session_.currentMatch();
        const bool isSelected = current && *current == selected;
        return session_.stepForward(isSelected ? FindQuery::behind(searched_.storage().tree(), *current)
                                               : selected.end());
    });
}

void FindBar::findPrevious()
{
    step([this] { return session_.stepBackward(searched_.selectedRange().location); });
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
    session_.start(searched_.selectedRange().location);
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

void FindBar::open(const FindRequest& request)
{
    open(request.replaces);
    {
        // One search, once all is as it was asked for.
        const QSignalBlocker findIsQuiet(findField_);
        const QSignalBlocker caseIsQuiet(caseToggle_);
        const QSignalBlocker wordIsQuiet(wordToggle_);
        const QSignalBlocker patternIsQuiet(patternToggle_);
        if (!request.text.isEmpty()) {
            findField_->setText(request.text);
            engine_.setSearchText(request.text);
        }
        caseToggle_->setChecked(request.isCaseSensitive);
        wordToggle_->setChecked(false);
        patternToggle_->setChecked(request.isPattern);
    }
    if (request.replaces) {
        replaceField_->setText(request.replacement);
    }
    findField_->selectAll();
    restart();
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

void FindBar::readSelection()
{
    const TextRange selected = searched_.selectedRange();
    if (selected.length > longestSelection) {
        return;
    }
    const QString text = searched_.storage().substring(selected);
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
        searched_.reveal(*match);
        view_.scrollRangeToVisible(searched_.shown(*match));
    }
}

void FindBar::select(std::optional<TextRange> match)
{
    if (match) {
        searched_.reveal(*match);
        view_.setSelectedRange(searched_.shown(*match));
        view_.scrollRangeToVisible(searched_.shown(*match));
        origin_ = match->location;
    }
    showState();
}

void FindBar::replaceCurrent()
{
    // What is shown in short is shown in full first, and the text that is edited is the one that was searched.
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
        showStatus(tr("Replacing…"));
    }
}

void FindBar::putInAll(const ReplaceAllResult& result)
{
    switch (result.outcome) {
    case ReplaceAllResult::Outcome::replaced:
        replace(result);
        break;
    case ReplaceAllResult::Outcome::nothingFound:
        break;
    case ReplaceAllResult::Outcome::gaveUp:
        showStatus(tr("Stopped: this pattern takes too long here"));
        break;
    case ReplaceAllResult::Outcome::tooLong:
        showStatus(tr("The result would be too long"));
        break;
    }
}

void FindBar::replace(const ReplaceAllResult& result)
{
    // While it was made, a part of the text may have come to be shown in short, and another text to be composed or
    // stored. The places are those of the text that was searched, and hold in no other.
    const TextTree searched = searched_.storage().tree();
    view_.commitComposition();
    if (!view_.editor().prepareEdit() || !(view_.storage().tree() == searched)) {
        showState();
        return;
    }
    view_.editor().apply({{result.range, result.text}}, EditKind::other);
    showStatus(tr("%1 replaced").arg(result.count));
}

void FindBar::showState()
{
    showStatus(session_.statusText());
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
    const std::optional<TextRange> current = session_.currentMatch();
    std::vector<TextHighlight> highlights;
    for (const SearchedText::ShownMatch& match : searched_.matchesIn(session_, shown)) {
        const bool isCurrent = current && match.match == *current;
        highlights.push_back({match.shown, isCurrent ? view_.colors().currentMatch : view_.colors().match});
    }
    view_.setHighlights(std::move(highlights));
}

void FindBar::placeOverView()
{
    if (isHidden()) {
        return;
    }
    const int width = view_.viewport()->width();
    fitRows(width);
    const int height = sizeHint().height();
    setGeometry(0, 0, width, height);
    view_.setTopObscured(height);
}

} // namespace kelm
