#include "git/viewer/view/diff_sheet.h"

#include "git/diff/diff_content.h"
#include "git/service/git_names.h"
#include "git/viewer/untracked_file.h"
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "git/viewer/view/file_sizes.h"
#include "git/viewer/view/sheet_failure_line.h"
#include "platform/events/main_queue.h"
#include "platform/files/file_identity.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/style/view/style.h"
#include "platform/text/shown_name.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/segmented_picker.h"
#include "platform/view/sheet_frame.h"

#include <QHBoxLayout>
#include <QLayout>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>

namespace kelm {

namespace {

constexpr int pickerWidth = 160;

qsizetype hunksIn(DiffViewer& viewer)
{
    qsizetype hunks = 0;
    for (const DiffFile& file : viewer.list().diffLayout().files()) {
        hunks += file.hunks.size();
    }
    return hunks;
}

} // namespace

DiffSheetView::DiffSheetView(GitService& git, QString path, QWidget* parent)
    : QWidget(parent), git_(&git), repository_(git.repoURL()), path_(std::move(path))
{
    setWindowTitle(shownName(path_));
    // In the order in which Tab reaches them.
    QWidget* const header = makeHeader();
    viewer_ = new DiffViewer(this);
    frameSheet(*this, header, viewer_);
    layout()->addWidget(new Divider(Qt::Horizontal, this));
    layout()->addWidget(makeFooter(git));
    updateAction();
    addShortcuts();
    new FileSizes(*viewer_, [this](const DiffFileFacts& facts) { return sizesOf(facts); });
    connect(viewer_, &DiffViewer::shown, this, [this] {
        (stagedView_ ? stagedHunks_ : workingHunks_) = isUntracked() && !stagedView_ ? 0 : hunksIn(*viewer_);
        updateCounts();
    });
    connect(&git, &GitService::statusChanged, this, &DiffSheetView::updateCounts);
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
    auto* title = new TextLabel(shownName(path_), style::headlineFont(), Tint::primary(), header);
    title->setElideMode(Qt::ElideMiddle);
    picker_ = new SegmentedPicker({tr("Working"), tr("Staged")}, tr("Which changes are shown"), header);
    picker_->setFixedWidth(pickerWidth);
    picker_->setToolTip(tr("Working (Ctrl+1), Staged (Ctrl+2)"));
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

QWidget* DiffSheetView::makeFooter(GitService& git)
{
    auto* footer = new QWidget(this);
    failure_ = new SheetFailureLine(git, {QStringLiteral("diff"), QStringLiteral("apply")}, footer);
    counts_ = new TextLabel({}, style::interfaceFont(style::typeSize::caption), Tint::secondary(), footer);
    counts_->setGivesWay(false);

    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(0, 0, sheetMargins().right(), 0);
    row->setSpacing(0);
    row->addWidget(failure_, 1);
    row->addWidget(counts_);
    return footer;
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

void DiffSheetView::addShortcuts()
{
    const auto add = [this](const QKeySequence& keys, bool staged) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, staged] { setStagedView(staged); });
    };
    add(Qt::CTRL | Qt::Key_1, false);
    add(Qt::CTRL | Qt::Key_2, true);
}

void DiffSheetView::load()
{
    failure_->clear();
    // While git is asked, events may come through.
    const QPointer<DiffSheetView> self = this;
    const bool isStaged = stagedView_;
    const QString diff =
        isRepositoryOpen() ? git_->diff(namesToDiff(git_->status(), path_, isStaged), isStaged) : QString();
    if (!self || isStaged != stagedView_) {
        return;
    }
    diff_ = diff;
    (stagedView_ ? workingHunks_ : stagedHunks_).reset();
    showDiff();
    // The other view is counted when this one is on screen.
    onMainQueue(this, [this] { countOther(); });
}

void DiffSheetView::showDiff()
{
    QString words;
    QString shown = diff_;
    const GitFileStatus* const file = isRepositoryOpen() ? entry() : nullptr;
    if (diff_.isEmpty() && file != nullptr && !stagedView_) {
        if (isUntracked()) {
            const UntrackedFile untracked = UntrackedFile::read(pathOnDisk(), shownName(path_));
            shown = untracked.diff;
            words = untracked.words;
        } else if (file->unstaged) {
            words = tr("There is a change that cannot be shown as text");
        }
    }
    viewer_->setEmptyText(words);
    viewer_->setDiffText(shown);
}

const GitFileStatus* DiffSheetView::entry() const
{
    const QList<GitFileStatus>& status = git_->status();
    const auto found = std::find_if(status.begin(), status.end(),
                                    [this](const GitFileStatus& file) { return namesOf(file).current == path_; });
    return found == status.end() ? nullptr : &*found;
}

bool DiffSheetView::isUntracked() const
{
    const GitFileStatus* const file = isRepositoryOpen() ? entry() : nullptr;
    return file != nullptr && file->unstaged == GitFileChange::untracked;
}

QString DiffSheetView::pathOnDisk() const
{
    return filePath(*repository_) + u'/' + path_;
}

DiffFileSizes DiffSheetView::sizesOf(const DiffFileFacts& facts)
{
    if (!isRepositoryOpen()) {
        return {};
    }
    DiffFileSizes sizes{git_->contentSize(facts.oldContent), {}};
    if (stagedView_) {
        sizes.newSize = git_->contentSize(facts.newContent);
    } else if (!facts.isDeleted) {
        // What stands in the folder has a name in the diff, but git does not hold it.
        const std::optional<FileIdentity> there = identityOf(nativePath(pathOnDisk()));
        sizes.newSize = there ? std::optional(there->size) : std::nullopt;
    }
    return sizes;
}

void DiffSheetView::countOther()
{
    std::optional<qsizetype>& count = stagedView_ ? workingHunks_ : stagedHunks_;
    const GitFileStatus* const file = isRepositoryOpen() ? entry() : nullptr;
    const bool hasOther = file != nullptr && (stagedView_ ? file->unstaged : file->staged).has_value();
    if (!hasOther) {
        count = 0;
    } else if (!count && !isUntracked()) {
        const QPointer<DiffSheetView> self = this;
        const bool other = !stagedView_;
        const QString diff = git_->diff(namesToDiff(git_->status(), path_, other), other);
        if (!self || other == stagedView_) {
            return;
        }
        if (diff.size() <= DiffViewer::longestAtOnce) {
            count = diff.count(QStringLiteral("\n@@ "));
        }
    }
    updateCounts();
}

QString DiffSheetView::counts() const
{
    return counts_->text();
}

void DiffSheetView::updateCounts()
{
    const GitFileStatus* const file = isRepositoryOpen() ? entry() : nullptr;
    const auto told = [](const std::optional<GitFileChange>& change, const std::optional<qsizetype>& hunks) {
        if (hunks && *hunks > 0) {
            return hunkCountLabel(*hunks);
        }
        return change ? rawValue(*change) : tr("none");
    };
    counts_->setText(file == nullptr ? QString()
                                     : tr("Working: %1 · Staged: %2")
                                           .arg(told(file->unstaged, workingHunks_), told(file->staged, stagedHunks_)));
}

void DiffSheetView::updateAction()
{
    viewer_->setHunkAction(
        stagedView_ ? tr("Unstage hunk") : tr("Stage hunk"),
        [this](const DiffFile& file, qsizetype hunk) { applyHunk(file, hunk); },
        [this](const DiffFile& file, qsizetype hunk) -> HunkHindrance {
            if (diff_.isEmpty()) {
                return {tr("Git does not know the file yet. Stage it as a whole."), {}};
            }
            return HunkHindrance::of(file, hunk, stagedView_);
        });
}

void DiffSheetView::applyHunk(const DiffFile& file, qsizetype hunk)
{
    const std::optional<QString> patch = file.patch(hunk);
    if (isRepositoryOpen() && patch && git_->applyPartialPatch(*patch, stagedView_).isSuccess()) {
        load();
    }
}

} // namespace kelm
