#include "git/viewer/view/diff_sheet.h"

#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "git/viewer/view/sheet_failure_line.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/segmented_picker.h"
#include "platform/view/sheet_frame.h"

#include <QHBoxLayout>
#include <QLayout>
#include <QPushButton>

namespace kelm {

namespace {

constexpr int pickerWidth = 160;

} // namespace

DiffSheetView::DiffSheetView(GitService& git, QString path, QWidget* parent)
    : QWidget(parent), git_(&git), repository_(git.repoURL()), path_(std::move(path))
{
    setWindowTitle(path_);
    // In the order in which Tab reaches them.
    QWidget* const header = makeHeader();
    viewer_ = new DiffViewer(this);
    frameSheet(*this, header, viewer_);
    failure_ = new SheetFailureLine(git, {QStringLiteral("diff"), QStringLiteral("apply")}, this);
    layout()->addWidget(failure_);
    updateAction();
}

DiffSheetView::~DiffSheetView() = default;

QSize DiffSheetView::sizeHint() const
{
    return usualSheetSize;
}

QSize DiffSheetView::minimumSizeHint() const
{
    return leastSheetSize;
}

QWidget* DiffSheetView::makeHeader()
{
    auto* header = new QWidget(this);
    auto* title = new TextLabel(path_, style::headlineFont(), Tint::primary(), header);
    title->setElideMode(Qt::ElideMiddle);
    picker_ = new SegmentedPicker({tr("Working"), tr("Staged")}, tr("Which changes are shown"), header);
    picker_->setFixedWidth(pickerWidth);
    connect(picker_, &SegmentedPicker::selectionChanged, this, [this](int index) { setStagedView(index == 1); });

    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(sheetMargins());
    row->setSpacing(sheetSpacing);
    row->addWidget(title, 1);
    row->addWidget(picker_);
    row->addWidget(makeCloseButton(*header, [this] {
        if (onClose) {
            onClose();
        }
    }));
    return header;
}

void DiffSheetView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!hasAppeared_) {
        hasAppeared_ = true;
        load();
        // The arrow keys scroll at once.
        viewer_->list().setFocus();
    }
}

void DiffSheetView::setStagedView(bool staged)
{
    if (staged != stagedView_) {
        stagedView_ = staged;
        picker_->setSelectedIndex(staged ? 1 : 0);
        load();
        updateAction();
    }
}

bool DiffSheetView::isRepositoryOpen() const
{
    return git_ && git_->repoURL() == repository_;
}

void DiffSheetView::load()
{
    failure_->clear();
    diff_ = isRepositoryOpen() ? git_->diff(path_, stagedView_) : QString();
    viewer_->setDiffText(diff_);
}

void DiffSheetView::updateAction()
{
    viewer_->setHunkAction(stagedView_ ? tr("Unstage hunk") : tr("Stage hunk"),
                           [this](const DiffFile& file, qsizetype hunk) { applyHunk(file, hunk); });
}

void DiffSheetView::applyHunk(const DiffFile& file, qsizetype hunk)
{
    const std::optional<QString> patch = file.patch(hunk);
    if (isRepositoryOpen() && patch && git_->applyPartialPatch(*patch, stagedView_).isSuccess()) {
        load();
    }
}

} // namespace kelm
