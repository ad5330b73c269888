#include "git/viewer/view/commit_sheet.h"

#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/sheet_frame.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>

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
    frameSheet(*this, header, viewer_);
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
        content_ = git_ ? git_->showCommit(sha_) : QString();
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
