#include "git/panel/view/changes_tab.h"

#include "git/panel/view/commit_composer.h"
#include "git/panel/view/file_status_row.h"
#include "git/service/git_names.h"
#include "git/service/git_service.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 24;

/// Whether the file is there as far as its status tells.
bool isInTree(const GitFileStatus& status)
{
    return (status.unstaged ? status.unstaged : status.staged) != GitFileChange::deleted;
}

} // namespace

ChangesTab::ChangesTab(GitService& git, std::function<void(const QString& path)> onClickDiff, QWidget* parent)
    : PanelTab(parent),
      git_(git),
      onClickDiff_(std::move(onClickDiff)),
      conflictBar_(makeConflictBar()),
      composer_(new CommitComposer(git, this)),
      list_(new RowList(rowHeight, this))
{
    list_->setAccessibleName(tr("Changes"));
    list_->setPlaceholder(tr("Working tree clean"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(conflictBar_);
    column->addWidget(composer_);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(list_, 1);
    connect(&git_, &GitService::statusChanged, this, &ChangesTab::refresh);
}

void ChangesTab::setFileActions(FileActions actions)
{
    fileActions_ = std::move(actions);
    refresh();
}

QWidget* ChangesTab::makeConflictBar()
{
    auto* bar = new QWidget(this);
    conflictCount_ = new TextLabel({}, RowFonts::standard().body, Tint::primary(), bar);
    PlainButton* abort = makePanelButton(tr("Abort Merge"), bar);
    connect(abort, &QAbstractButton::clicked, &git_, &GitService::abortMerge);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(8, 8, 8, 0);
    row->setSpacing(6);
    row->addWidget(new SymbolLabel(u"exclamationmark.triangle.fill"_s, 13, SystemColor::orange, bar));
    row->addWidget(conflictCount_);
    row->addStretch();
    row->addWidget(abort);
    return bar;
}

void ChangesTab::refreshState()
{
    const qsizetype conflicts = git_.conflictedFiles().size();
    conflictCount_->setText(QString::number(conflicts) + u" conflicted"_s);
    conflictBar_->setVisible(conflicts > 0);

    // The rows hold the list that they look into: they outlast a change of the status while the tab is hidden.
    const QList<GitFileStatus> files = git_.status();
    QList<qsizetype> staged;
    QList<qsizetype> unstaged;
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (files[i].staged) {
            staged.append(i);
        }
        if (files[i].unstaged) {
            unstaged.append(i);
        }
    }
    QList<RowSection> sections;
    const auto addSection = [&](const QString& title, const QList<qsizetype>& indexes, bool isStaged) {
        if (indexes.isEmpty()) {
            return;
        }
        sections.append(
            {.title = title,
             .count = indexes.size(),
             .row = [this, files, indexes, isStaged](qsizetype i) { return rowOf(files[indexes[i]], isStaged); },
             .key = [files, indexes](qsizetype i) { return files[indexes[i]].path; },
             .file =
                 [files, indexes, tree = git_.repoURL().value_or(QUrl())](qsizetype i) {
                     const GitFileStatus& status = files[indexes[i]];
                     return isInTree(status) ? fileOf(status, tree) : QUrl();
                 },
             .isTitleUpperCase = true});
    };
    addSection(tr("Staged"), staged, true);
    addSection(tr("Changes"), unstaged, false);
    list_->setSections(sections);
    list_->setPlaceholder(files.isEmpty() ? tr("Working tree clean") : QString());
}

Row ChangesTab::rowOf(const GitFileStatus& file, bool staged)
{
    const QUrl url = fileOf(file, git_.repoURL().value_or(QUrl()));
    const bool isThere = isInTree(file);
    std::function<void()> open;
    if (fileActions_.open && isThere) {
        open = [openFile = fileActions_.open, url] { openFile(url); };
    }
    return FileStatusRow{.file = file,
                         .staged = staged,
                         .onClickDiff = [this, file] { onClickDiff_(namesOf(file).current); },
                         .onUnstage = [this, file] { git_.unstage(namesToUnstage(file)); },
                         .onStage = [this, file] { git_.stage(namesToStage(file)); },
                         .onDiscard = [this, file] { git_.discardChanges(namesToDiscard(file)); },
                         .onOpen = open,
                         .menu = fileMenu(url, isThere, fileActions_)}
        .content();
}

} // namespace kelm
