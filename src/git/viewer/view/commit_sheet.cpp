#include "git/viewer/view/commit_sheet.h"

#include "git/viewer/view/commit_details.h"
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "git/viewer/view/file_sizes.h"
#include "platform/style/view/style.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/row_list.h"
#include "platform/view/sheet_frame.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int titleSize = 12;
constexpr qsizetype shownShaLength = 10;

} // namespace

CommitDetailView::CommitDetailView(GitService& git, QString sha, QWidget* parent)
    : QWidget(parent), git_(&git), sha_(std::move(sha))
{
    // In the order in which Tab reaches them.
    QWidget* const header = makeHeader();
    viewer_ = new DiffViewer(this);
    details_ = new CommitDetails([this](qsizetype file) { viewer_->list().showFile(file); }, this);
    auto* body = new QWidget(this);
    auto* column = new QVBoxLayout(body);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(details_);
    column->addWidget(new Divider(Qt::Horizontal, body));
    column->addWidget(viewer_, 1);
    frameSheet(*this, header, body);
    connect(viewer_, &DiffViewer::shown, this, [this] {
        details_->setFiles(viewer_->list().diffLayout().files(),
                           [this](qsizetype file) { return viewer_->list().fileLabelOf(file); });
    });
    auto* sizes = new FileSizes(*viewer_, [this](const DiffFileFacts& facts) {
        return git_ ? DiffFileSizes{git_->contentSize(facts.oldContent), git_->contentSize(facts.newContent)}
                    : DiffFileSizes{};
    });
    connect(sizes, &FileSizes::told, this, [this] { details_->files().viewport()->update(); });
}

CommitDetailView::~CommitDetailView() = default;

QSize CommitDetailView::sizeHint() const
{
    return usualSheetSize;
}

QSize CommitDetailView::minimumSizeHint() const
{
    return leastSheetSize;
}

QWidget* CommitDetailView::makeHeader()
{
    auto* header = new QWidget(this);
    setWindowTitle(tr("Commit %1").arg(sha_.left(shownShaLength)));
    auto* title =
        new TextLabel(windowTitle(), style::interfaceFont(titleSize, QFont::DemiBold), Tint::primary(), header);
    auto* copy = new QPushButton(tr("Copy SHA"), header);
    copy->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this, &CommitDetailView::copySha);

    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(sheetMargins());
    row->setSpacing(sheetSpacing);
    row->addWidget(title, 1);
    row->addWidget(copy);
    row->addWidget(makeCloseButton(*header, [this] {
        if (onClose) {
            onClose();
        }
    }));
    return header;
}

void CommitDetailView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!hasAppeared_) {
        hasAppeared_ = true;
        // While git is asked, events may come through.
        const QPointer<CommitDetailView> self = this;
        const QString content = git_ ? git_->showCommit(sha_) : QString();
        if (!self) {
            return;
        }
        content_ = content;
        details_->setContent(content_);
        viewer_->setDiffText(content_);
        // The arrow keys scroll at once.
        viewer_->list().setFocus();
    }
}

void CommitDetailView::copySha() const
{
    QClipboard* const clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(sha_);
}

} // namespace kelm
