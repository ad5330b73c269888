// The open documents and the state of the window.
#pragma once

#include "app/document/document.h"
#include "app/state/window_tabs.h"
#include "platform/desktop/file_panels.h"
#include "platform/events/notification_center.h"
#include "platform/events/scheduler.h"
#include "platform/files/file_error.h"
#include "platform/files/user_defaults.h"
#include "platform/process/log.h"
#include "run/executable_search.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>
#include <optional>
#include <variant>

namespace kelm {

class CodeRunner;
class DocumentRewriter;
class DocumentSaving;
class GitNotices;
class GitService;
class LargeFiles;
class LinkRuns;
class Notices;
class ReplacedFiles;
class RepositoryFollower;
class RunRequests;
class UnsavedTexts;
class WatchedFiles;
struct FileFailure;

/// Holds the open documents, one per tab, and one flag for each panel and overlay; opens and saves files. Menus, the
/// toolbar, the tab bar and links all act through it, and views redraw on its signals.
///
/// No operation throws or shows an alert: a failure is logged, told by a notice, and leaves the state as it was, unless
/// stated otherwise.
/// Main thread only.
class AppState : public QObject
{
    Q_OBJECT
    Q_PROPERTY(
        QList<std::shared_ptr<kelm::Document>> documents READ documents WRITE setDocuments NOTIFY documentsChanged)
    Q_PROPERTY(qsizetype currentDocumentIndex READ currentDocumentIndex WRITE setCurrentDocumentIndex NOTIFY
                   currentDocumentIndexChanged)
    Q_PROPERTY(std::shared_ptr<kelm::Document> currentDocument READ currentDocument NOTIFY currentDocumentChanged)
    Q_PROPERTY(QList<QUrl> recentFiles READ recentFiles WRITE setRecentFiles NOTIFY recentFilesChanged)
    Q_PROPERTY(bool showSidebar READ showSidebar WRITE setShowSidebar NOTIFY showSidebarChanged)
    Q_PROPERTY(bool showBottomPanel READ showBottomPanel WRITE setShowBottomPanel NOTIFY showBottomPanelChanged)
    Q_PROPERTY(bool showMinimap READ showMinimap WRITE setShowMinimap NOTIFY showMinimapChanged)
    Q_PROPERTY(bool showSearch READ showSearch WRITE setShowSearch NOTIFY showSearchChanged)
    Q_PROPERTY(bool showQuickOpen READ showQuickOpen WRITE setShowQuickOpen NOTIFY showQuickOpenChanged)
    Q_PROPERTY(bool showGoToLine READ showGoToLine WRITE setShowGoToLine NOTIFY showGoToLineChanged)
    Q_PROPERTY(kelm::SearchMode searchMode READ searchMode WRITE setSearchMode NOTIFY searchModeChanged)
    Q_PROPERTY(
        std::optional<QUrl> currentProject READ currentProject WRITE setCurrentProject NOTIFY currentProjectChanged)
    Q_PROPERTY(
        kelm::BottomPanelTab bottomPanelTab READ bottomPanelTab WRITE setBottomPanelTab NOTIFY bottomPanelTabChanged)
    Q_PROPERTY(bool showCloneDialog READ showCloneDialog WRITE setShowCloneDialog NOTIFY showCloneDialogChanged)

public:
    using Documents = QList<std::shared_ptr<Document>>;

    /// What the state reaches beyond itself; all of it outlives the state.
    struct Services
    {
        FilePanels& filePanels;
        UserDefaults& userDefaults;
        Scheduler& scheduler;
        NotificationCenter& notificationCenter;
        Log& log;
        /// Starts git.
        std::shared_ptr<ProcessRunner> processRunner;
        /// Finds the programs that run files.
        ExecutableSearch executableSearch;
        /// The folder of the copies of unsaved texts; empty for a state that keeps none.
        QString recoveryFolder = {};
        /// Keeps what a save writes over; absent for a folder of the program's own.
        ReplacedFiles* replacedFiles = nullptr;
    };

    /// Starts without a document, and loads the recent files.
    explicit AppState(const Services& services);
    ~AppState() override;

    /// The state of the program, made on first use; the file panels are installed before that.
    static AppState& shared();

    /// The open documents in the order of the tabs.
    const Documents& documents() const { return documents_; }
    void setDocuments(const Documents& documents);

    /// May be out of range; `currentDocument` is null then.
    qsizetype currentDocumentIndex() const { return currentDocumentIndex_; }
    void setCurrentDocumentIndex(qsizetype index);
    std::shared_ptr<Document> currentDocument() const;

    /// Most recent first, at most ten once one is added.
    const QList<QUrl>& recentFiles() const { return recentFiles_; }
    void setRecentFiles(const QList<QUrl>& recentFiles);

    bool showSidebar() const { return showSidebar_; }
    void setShowSidebar(bool show);
    bool showBottomPanel() const { return showBottomPanel_; }
    void setShowBottomPanel(bool show);
    bool showMinimap() const { return showMinimap_; }
    void setShowMinimap(bool show);
    bool showSearch() const { return showSearch_; }
    void setShowSearch(bool show);
    bool showQuickOpen() const { return showQuickOpen_; }
    void setShowQuickOpen(bool show);
    bool showGoToLine() const { return showGoToLine_; }
    void setShowGoToLine(bool show);
    bool showCloneDialog() const { return showCloneDialog_; }
    void setShowCloneDialog(bool show);
    SearchMode searchMode() const { return searchMode_; }
    void setSearchMode(SearchMode mode);
    BottomPanelTab bottomPanelTab() const { return bottomPanelTab_; }
    void setBottomPanelTab(BottomPanelTab tab);

    /// The folder that is open.
    const std::optional<QUrl>& currentProject() const { return currentProject_; }
    void setCurrentProject(const std::optional<QUrl>& project);

    /// Where the state and its runner post.
    FilePanels& filePanels() const { return services_.filePanels; }
    Scheduler& scheduler() const { return services_.scheduler; }
    NotificationCenter& notificationCenter() const { return services_.notificationCenter; }
    /// Where what is logged and printed goes.
    Log& log() const { return services_.log; }

    /// The one runner of files and snippets, the same for the whole run.
    CodeRunner& codeRunner() const { return *codeRunner_; }

    /// The one git service, the same for the whole run. No repository is open at first.
    GitService& git() const { return *git_; }

    /// Keeps what the git service knows true; whoever shows that says so to it.
    RepositoryFollower& repositoryFollower() const { return *repositoryFollower_; }

    /// What goes on and takes its time.
    Notices& notices() const { return *notices_; }
    /// The files that are read while the window goes on.
    LargeFiles& largeFiles() const { return *largeFiles_; }
    /// The open files, which other programs may change.
    WatchedFiles& watchedFiles() const { return *watchedFiles_; }
    /// The code that links ask to run.
    LinkRuns& linkRuns() const { return *linkRuns_; }
    /// Makes the texts of documents anew.
    DocumentRewriter& rewriter() const { return *rewriter_; }
    /// The copies of what is not saved, and what was closed so.
    UnsavedTexts& unsavedTexts() const { return *unsavedTexts_; }

    /// Opens an empty, untitled document and makes it the current one.
    void createNewTab();

    /// Opens `code` as an untitled document in `language` and makes it the current one. 0.05 seconds later the editor,
    /// which stands by then, is asked to take the keyboard.
    void openSnippet(const QString& code, Language language, const std::optional<LessonInfo>& lessonInfo);

    /// Opens the UTF-8 file at `url`, or switches to the tab that shows it already, without a look at the disk. A very
    /// large file is read while the window goes on (see `LargeFiles`), and its tab comes when it is whole.
    void openFile(const QUrl& url);

    /// The same with each file in its order, as one change of the tabs: the last of them is current. Very large files
    /// come later, one by one.
    void openFiles(const QList<QUrl>& urls);

    /// Closes a tab at once, unsaved edits or not; a notice offers those again. The current index stays as it is unless
    /// it falls off the end: closing a tab before the current one moves on to the next document. An index out of range
    /// does nothing.
    void closeTab(qsizetype index);

    /// Closes all tabs but one, likewise.
    void closeOtherTabs(qsizetype index);

    /// Lets the person choose files, which are opened, and folders, of which the last becomes the project.
    void showOpenPanel();

    /// Saves the current document as UTF-8, or asks for a place when it has none. A failure is printed too and leaves
    /// the document modified.
    void saveCurrentDocument();

    /// Saves the current document where the person chooses. A failure leaves the document where it was.
    void saveCurrentDocumentAs();

    /// Saves each modified document that has a file. What fails is told in one notice and stays modified.
    void saveAllDocuments();

    /// Sorts the lines of the current document; those of a long text on a worker (see `DocumentRewriter`).
    void sortLines(bool ascending);

    /// Shows the output page and runs the current document: its file as it stands on disk, without unsaved edits, or,
    /// when it has none, its text. A text in a language that cannot be run so is told in the runner's output and on the
    /// page. While another run is on, a notice says so and offers to end it (see `RunRequests`).
    void runCurrentFile();

    /// Puts `url` at the front of the recent files, cuts them to ten and stores them.
    void addToRecentFiles(const QUrl& url);
    /// Reads the stored recent files and keeps those that are still on disk; rewrites nothing.
    void loadRecentFiles();
    void saveRecentFiles();

Q_SIGNALS:
    void documentsChanged();
    void currentDocumentIndexChanged();
    /// Another document is the current one, or none.
    void currentDocumentChanged();
    void recentFilesChanged();
    void showSidebarChanged();
    void showBottomPanelChanged();
    void showMinimapChanged();
    void showSearchChanged();
    void showQuickOpenChanged();
    void showGoToLineChanged();
    void showCloneDialogChanged();
    void searchModeChanged();
    void bottomPanelTabChanged();
    void currentProjectChanged();
    /// A file was opened or saved.
    void fileUsed(const QUrl& url);
    /// A clone has become the project.
    void projectCloned();

private:
    void connectGit();
    /// Sets tabs and index together, so that no observer sees the one without the other.
    void showDocuments(Documents documents, qsizetype currentIndex);
    /// A document with what was read; null, with the reason logged and added to `failures`, for what could not be.
    std::shared_ptr<Document> makeDocument(const QUrl& url, const std::variant<TextTree, FileError>& text,
                                           QList<FileFailure>& failures);
    /// Saves a document and tells of a failure.
    bool save(const std::shared_ptr<Document>& document, const QUrl& url);
    /// Writes a document, whose text is then in no other place but its file.
    std::optional<FileError> write(const std::shared_ptr<Document>& document, const QUrl& url);
    /// Keeps what a save wrote over; what it gives opens that, as a text that no file has.
    std::function<void()> keepReplaced(const QUrl& file, const QByteArray& content);
    /// Begins to read a very large file, unless that has begun already.
    void readLargeFile(const QUrl& url);
    /// Takes what was read of it; nothing when that was ended.
    void showLargeFile(const QUrl& url, const std::optional<std::variant<TextTree, FileError>>& text);
    void appendAndShow(std::shared_ptr<Document> document);
    void showOutputPage();
    /// Puts each at the front of the recent files, and stores them once.
    void putInRecentFiles(const QList<QUrl>& urls);

    Services services_;
    const std::unique_ptr<CodeRunner> codeRunner_;
    const std::unique_ptr<Notices> notices_;
    const std::unique_ptr<RunRequests> runRequests_;
    const std::unique_ptr<GitNotices> gitNotices_;
    const std::unique_ptr<GitService> git_;
    const std::unique_ptr<RepositoryFollower> repositoryFollower_;
    const std::unique_ptr<LargeFiles> largeFiles_;
    const std::unique_ptr<LinkRuns> linkRuns_;
    const std::unique_ptr<DocumentRewriter> rewriter_;
    const std::unique_ptr<UnsavedTexts> unsavedTexts_;
    const std::unique_ptr<WatchedFiles> watchedFiles_;
    const std::unique_ptr<ReplacedFiles> ownReplacedFiles_;
    const std::unique_ptr<DocumentSaving> saving_;
    Documents documents_;
    qsizetype currentDocumentIndex_ = 0;
    QList<QUrl> recentFiles_;
    std::optional<QUrl> currentProject_;
    SearchMode searchMode_ = SearchMode::find;
    BottomPanelTab bottomPanelTab_ = BottomPanelTab::terminal;
    bool showSidebar_ = true;
    bool showBottomPanel_ = false;
    bool showMinimap_ = true;
    bool showSearch_ = false;
    bool showQuickOpen_ = false;
    bool showGoToLine_ = false;
    bool showCloneDialog_ = false;
};

} // namespace kelm
