#include "search/view/search_overlay.h"

#include "app/state/app_state.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int panelWidth = 400;
constexpr int shadowRadius = 10;
constexpr int padding = 14;
constexpr int symbolSize = 14;

QHBoxLayout* makeRow(QWidget* row)
{
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    return layout;
}

bool isReturn(const QKeyEvent& key)
{
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

QLineEdit* makeField(const QString& prompt, QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setPlaceholderText(prompt);
    field->setAccessibleName(prompt);
    return field;
}

PlainButton* makeToggle(const QString& symbol, const QString& help, QWidget* parent)
{
    auto* toggle = new PlainButton({.symbol = symbol,
                                    .symbolSize = symbolSize,
                                    .checkedTint = Tint::accent(),
                                    .ground = Tint::primary().at(0.06),
                                    .fixedSize = {28, 26}},
                                   parent);
    toggle->setHelp(help);
    toggle->setCheckable(true);
    return toggle;
}

} // namespace

SearchOverlay::SearchOverlay(AppState& appState, QWidget* parent)
    : OverlayCard(panelWidth, shadowRadius, parent), appState_(appState)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(10);
    column->addWidget(makeTitleRow());
    column->addWidget(makeFindRow());
    replaceRow_ = makeReplaceRow();
    buttons_ = makeButtons();
    column->addWidget(replaceRow_);
    column->addWidget(buttons_);
    setFocusProxy(searchText_);
    searchText_->installEventFilter(this);
    replaceText_->installEventFilter(this);
    for (const QLineEdit* field : {searchText_, replaceText_}) {
        connect(field, &QLineEdit::textChanged, this, &SearchOverlay::refreshRequest);
    }
    for (const PlainButton* toggle : {caseToggle_, patternToggle_}) {
        connect(toggle, &PlainButton::toggled, this, &SearchOverlay::refreshRequest);
    }
    connect(&appState_, &AppState::searchModeChanged, this, &SearchOverlay::refreshMode);
    refreshMode();
}

QWidget* SearchOverlay::makeTitleRow()
{
    auto* row = new QWidget(this);
    QHBoxLayout* layout = makeRow(row);
    title_ = new TextLabel({}, style::headlineFont(), Tint::primary(), row);
    auto* close = new PlainButton(
        {.symbol = u"xmark.circle.fill"_s, .symbolSize = 15, .hoveredTint = Tint::primary(), .fixedSize = {22, 22}},
        row);
    close->setHelp(tr("Close"));
    connect(close, &PlainButton::clicked, this, [this] { appState_.setShowSearch(false); });
    layout->addWidget(title_);
    layout->addStretch(1);
    layout->addWidget(close);
    return row;
}

QWidget* SearchOverlay::makeFindRow()
{
    auto* row = new QWidget(this);
    QHBoxLayout* layout = makeRow(row);
    searchText_ = makeField(u"Find"_s, row);
    layout->addWidget(new SymbolLabel(u"magnifyingglass"_s, symbolSize, Tint::secondary(), row));
    layout->addWidget(searchText_, 1);
    caseToggle_ = makeToggle(u"textformat"_s, u"Case Sensitive"_s, row);
    patternToggle_ = makeToggle(u"number"_s, u"Use Regular Expression"_s, row);
    layout->addWidget(caseToggle_);
    layout->addWidget(patternToggle_);
    return row;
}

QWidget* SearchOverlay::makeReplaceRow()
{
    auto* row = new QWidget(this);
    QHBoxLayout* layout = makeRow(row);
    replaceText_ = makeField(u"Replace"_s, row);
    layout->addWidget(new SymbolLabel(u"arrow.triangle.swap"_s, symbolSize, Tint::secondary(), row));
    layout->addWidget(replaceText_, 1);
    return row;
}

QWidget* SearchOverlay::makeButtons()
{
    auto* row = new QWidget(this);
    QHBoxLayout* layout = makeRow(row);
    layout->addStretch(1);
    // Neither changes a text.
    for (const QString& text : {u"Replace"_s, u"Replace All"_s}) {
        auto* button = new PlainButton(borderedLook(), row);
        button->setText(text);
        connect(button, &PlainButton::clicked, this, &SearchOverlay::searchAskedFor);
        layout->addWidget(button);
    }
    return row;
}

void SearchOverlay::refreshMode()
{
    const bool replaces = appState_.searchMode() == SearchMode::replace;
    title_->setText(replaces ? u"Find and Replace"_s : u"Find"_s);
    setAccessibleName(title_->text());
    replaceRow_->setVisible(replaces);
    buttons_->setVisible(replaces);
    refreshRequest();
}

void SearchOverlay::refreshRequest()
{
    *request_ = {.text = searchText_->text(),
                 .replaces = appState_.searchMode() == SearchMode::replace,
                 .replacement = replaceText_->text(),
                 .isCaseSensitive = caseToggle_->isChecked(),
                 .isPattern = patternToggle_->isChecked()};
}

bool SearchOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return OverlayCard::eventFilter(watched, event);
    }
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (watched == searchText_ && key.key() == Qt::Key_Escape) {
        appState_.setShowSearch(false);
        return true;
    }
    if (isReturn(key)) {
        Q_EMIT searchAskedFor();
        return true;
    }
    return OverlayCard::eventFilter(watched, event);
}

} // namespace kelm
