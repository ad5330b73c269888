#include "git/viewer/view/commit_details.h"

#include "git/diff/commit_text.h"
#include "git/diff/diff_selection.h"
#include "git/diff/file_facts.h"
#include "git/service/file_status_mark.h"
#include "platform/style/view/style.h"
#include "platform/text/shown_name.h"
#include "platform/view/labels.h"
#include "platform/view/row_list.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 22;
constexpr qsizetype mostRows = 5;
constexpr qsizetype mostLines = 7;
constexpr int margin = 16;
constexpr int spacing = 6;
/// Of the message, without which its last line would count as cut.
constexpr int slack = 6;

GitFileStatus statusOf(const DiffFile& file)
{
    const DiffFileFacts facts = DiffFileFacts::of(file);
    GitFileStatus status;
    status.staged = facts.isNew                                     ? GitFileChange::added
                    : facts.isDeleted                               ? GitFileChange::deleted
                    : facts.origin == DiffFileFacts::Origin::rename ? GitFileChange::renamed
                    : facts.origin == DiffFileFacts::Origin::copy   ? GitFileChange::copied
                                                                    : GitFileChange::modified;
    return status;
}

Row rowOf(const DiffFile& file, const QString& label, std::function<void()> onClick)
{
    constexpr int letterWidth = 12;
    const RowFonts& fonts = RowFonts::standard();
    const GitFileStatus status = statusOf(file);
    const FileStatusMark mark = fileStatusMark(status, true);
    Row row;
    row.firstLine = {
        {.text = mark.letter, .font = fonts.mark, .tint = mark.color, .givesWay = false, .leastWidth = letterWidth},
        {.text = shownPath(file), .font = fonts.monospaced, .elideMode = Qt::ElideMiddle},
        {.text = label, .font = fonts.caption, .tint = Tint::secondary(), .givesWay = false}};
    row.help = shownPath(file) + u" ("_s + rawValue(*status.staged) + u"), "_s + label;
    row.onClick = std::move(onClick);
    row.clickName = CommitDetails::tr("Show Changes");
    return row;
}

} // namespace

CommitDetails::CommitDetails(std::function<void(qsizetype)> showFile, QWidget* parent)
    : QWidget(parent),
      showFile_(std::move(showFile)),
      author_(new TextLabel({}, style::interfaceFont(style::typeSize::body, QFont::DemiBold), Tint::primary(), this)),
      date_(new TextLabel({}, style::interfaceFont(style::typeSize::body), Tint::secondary(), this)),
      message_(new QPlainTextEdit(this)),
      files_(new RowList(rowHeight, this))
{
    message_->setReadOnly(true);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    message_->setFrameShape(QFrame::NoFrame);
    message_->setFont(style::monospaced(style::typeSize::body));
    message_->setTabChangesFocus(true);
    message_->document()->setDocumentMargin(0);
    message_->viewport()->setAutoFillBackground(false);
    message_->setAccessibleName(tr("Message"));
    files_->setAccessibleName(tr("Files of the commit"));
    date_->setGivesWay(false);

    auto* who = new QHBoxLayout;
    who->addWidget(author_, 1);
    who->addWidget(date_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin / 2, margin, margin / 2);
    column->setSpacing(spacing);
    column->addLayout(who);
    column->addWidget(message_);
    column->addWidget(files_);
    setContent({});
}

void CommitDetails::setContent(const QString& content)
{
    const CommitText commit = CommitText::of(content);
    author_->setText(shownName(commit.author));
    date_->setText(commit.merged.isEmpty() ? commit.date : tr("%1 · merges %2").arg(commit.date, commit.merged));
    message_->setPlainText(commit.message);
    const int lineHeight = static_cast<int>(std::ceil(QFontMetricsF(message_->font()).height()));
    const qsizetype lines = std::clamp<qsizetype>(commit.message.count(u'\n') + 1, 1, mostLines);
    message_->setFixedHeight(static_cast<int>(lines) * lineHeight + slack);
    setFiles({}, {});
    setVisible(!content.isEmpty());
}

void CommitDetails::setFiles(const QList<DiffFile>& files, const std::function<QString(qsizetype)>& labelOf)
{
    files_->setSections({{.title = {},
                          .count = files.size(),
                          .row = [this, files, labelOf](
                                     qsizetype i) { return rowOf(files[i], labelOf(i), [this, i] { showFile_(i); }); },
                          .key = [files](qsizetype i) { return files[i].path; }}});
    const qsizetype rows = std::min(files.size(), mostRows);
    files_->setFixedHeight(static_cast<int>(rows) * rowHeight);
    files_->setVisible(rows > 0);
}

QString CommitDetails::author() const
{
    return author_->text();
}

QString CommitDetails::date() const
{
    return date_->text();
}

QString CommitDetails::message() const
{
    return message_->toPlainText();
}

} // namespace kelm
