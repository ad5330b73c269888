#include "workbench/status/view/document_status.h"

#include "workbench/status/text_counts.h"
#include "workbench/status/view/status_bar_items.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPointer>

#include <array>
#include <functional>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int itemSpacing = 2;
/// A text up to this length is counted as its menu opens, in a millisecond or two; a longer one while it is open.
constexpr qsizetype mostCountedAtOnce = 1 << 16;

constexpr std::array indentStyles{IndentStyle::spaces(2), IndentStyle::spaces(4), IndentStyle::spaces(8),
                                  IndentStyle::tabs()};

QString indentLabel(IndentStyle indentStyle)
{
    return indentStyle.isTabs() ? u"Tabs"_s : u"Spaces: "_s + QString::number(*indentStyle.spaceCount());
}

void addChoice(QMenu& menu, const QString& label, bool isCurrent, std::function<void()> choose)
{
    QAction* action = menu.addAction(label, &menu, std::move(choose));
    action->setCheckable(true);
    action->setChecked(isCurrent);
}

QHBoxLayout* makeRow(QWidget* parent)
{
    auto* row = new QHBoxLayout(parent);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(itemSpacing);
    return row;
}

} // namespace

DocumentLeftStatus::DocumentLeftStatus(std::shared_ptr<Document> document, QWidget* parent)
    : QWidget(parent), document_(std::move(document))
{
    language_ = new StatusBarMenu(
        document_->language().iconName(), {},
        [this](QMenu& menu) {
            for (const Language language : Language::allCases()) {
                addChoice(menu, language.rawValue(), language == document_->language(),
                          [this, language] { document_->setExplicitLanguage(language); });
            }
        },
        this);
    encoding_ = new StatusBarMenu(
        {}, {},
        [this](QMenu& menu) {
            for (const FileEncoding encoding : FileEncoding::allCases()) {
                addChoice(menu, encoding.rawValue(), encoding == FileEncoding::from(document_->encoding()),
                          [this, encoding] { document_->setEncoding(encoding.platformEncoding()); });
            }
        },
        this);
    lineEnding_ = new StatusBarMenu(
        {}, {},
        [this](QMenu& menu) {
            for (const LineEnding lineEnding : LineEnding::allCases()) {
                addChoice(menu, lineEnding.label(), lineEnding == document_->lineEnding(),
                          [this, lineEnding] { document_->setLineEnding(lineEnding); });
            }
        },
        this);
    language_->setHelp(tr("Language"));
    encoding_->setHelp(tr("Encoding"));
    lineEnding_->setHelp(tr("Line ending"));

    QHBoxLayout* row = makeRow(this);
    for (QWidget* item : {language_, encoding_, lineEnding_}) {
        row->addWidget(item);
    }
    connect(document_.get(), &Document::languageChanged, this, &DocumentLeftStatus::refreshDocument);
    connect(document_.get(), &Document::encodingChanged, this, &DocumentLeftStatus::refreshDocument);
    connect(document_.get(), &Document::lineEndingChanged, this, &DocumentLeftStatus::refreshDocument);
    refreshDocument();
}

void DocumentLeftStatus::refreshDocument()
{
    language_->setSymbol(document_->language().iconName());
    language_->setText(document_->language().rawValue());
    encoding_->setText(FileEncoding::from(document_->encoding()).rawValue());
    lineEnding_->setText(document_->lineEnding().label());
    for (QWidget* item : {language_, encoding_, lineEnding_}) {
        item->updateGeometry();
    }
}

DocumentRightStatus::DocumentRightStatus(std::shared_ptr<Document> document, QWidget* parent)
    : QWidget(parent),
      document_(std::move(document)),
      position_(new StatusBarItem({}, {}, false, this)),
      selection_(new StatusBarItem({}, {}, true, this)),
      lines_(new StatusBarMenu(
          u"doc.text"_s, {}, [this](QMenu& menu) { fillCounts(menu); }, this)),
      indent_(new StatusBarMenu(
          {}, {},
          [this](QMenu& menu) {
              for (const IndentStyle indentStyle : indentStyles) {
                  addChoice(menu, indentLabel(indentStyle), indentStyle == document_->indentStyle(),
                            [this, indentStyle] { document_->setIndentStyle(indentStyle); });
              }
          },
          this))
{
    lines_->setHelp(tr("Counts"));
    indent_->setHelp(tr("Indentation"));
    QHBoxLayout* row = makeRow(this);
    for (QWidget* item : std::initializer_list<QWidget*>{position_, selection_, lines_, indent_}) {
        row->addWidget(item);
    }
    connect(document_.get(), &Document::cursorPositionChanged, this, &DocumentRightStatus::refreshPosition);
    connect(document_.get(), &Document::selectionChanged, this, &DocumentRightStatus::refreshSelection);
    connect(document_.get(), &Document::indentStyleChanged, this, &DocumentRightStatus::refreshIndentStyle);
    connect(document_.get(), &Document::contentChanged, this, &DocumentRightStatus::refreshLineCount);
    refreshPosition();
    refreshSelection();
    refreshLineCount();
    refreshIndentStyle();
}

void DocumentRightStatus::refreshPosition()
{
    const CursorPosition& position = document_->cursorPosition();
    position_->setText(u"Ln "_s + QString::number(position.line) + u", Col "_s + QString::number(position.column));
}

void DocumentRightStatus::refreshSelection()
{
    const std::optional<TextSelection>& selection = document_->selection();
    selection_->setVisible(selection.has_value());
    if (selection) {
        const qsizetype length = std::abs(selection->end.offset - selection->start.offset);
        selection_->setText(QString::number(length) + u" selected"_s);
    }
}

void DocumentRightStatus::refreshLineCount()
{
    const qsizetype count = newlineSeparatedCount(document_->text());
    if (std::exchange(lineCount_, count) != count) {
        lines_->setText(QString::number(count) + u" lines"_s);
        lines_->updateGeometry();
    }
}

void DocumentRightStatus::refreshIndentStyle()
{
    indent_->setText(indentLabel(document_->indentStyle()));
    indent_->updateGeometry();
}

void DocumentRightStatus::fillCounts(QMenu& menu)
{
    const TextTree text = document_->text();
    const auto add = [&menu](const QString& count) {
        QAction* action = menu.addAction(count);
        action->setEnabled(false);
        return action;
    };
    add(u"Lines: "_s + QString::number(newlineSeparatedCount(text)));
    const auto show = [characters = QPointer(add(u"Characters: …"_s)),
                       words = QPointer(add(u"Words: …"_s))](const TextCounts& counts) {
        if (characters && words) {
            characters->setText(u"Characters: "_s + QString::number(counts.characters));
            words->setText(u"Words: "_s + QString::number(counts.words));
        }
    };
    if (text.length() <= mostCountedAtOnce) {
        show(*countText(text, false));
        return;
    }
    counting_.start([text, show](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        const std::optional<TextCounts> counts = countText(text, stop);
        return [counts, show] {
            if (counts) {
                show(*counts);
            }
        };
    });
}

} // namespace kelm
