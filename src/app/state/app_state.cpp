#include "app/state/app_state.h"

#include "app/recovery/replaced_bytes.h"
#include "app/state/document_rewriter.h"
#include "app/state/document_saving.h"
#include "app/state/file_failures.h"
#include "app/state/git_notices.h"
#include "app/state/large_files.h"
#include "app/state/left_files.h"
#include "app/state/link_runs.h"
#include "app/state/notices.h"
#include "app/state/panel_start.h"
#include "app/state/replaced_files.h"
#include "app/state/run_requests.h"
#include "app/state/text_file.h"
#include "app/state/unsaved_texts.h"
#include "app/state/watched_files.h"
#include "editor/transforms/text_transformer.h"
#include "git/service/git_service.h"
#include "git/service/repository_follower.h"
#include "platform/files/file_url.h"
#include "platform/files/standard_paths.h"
#include "run/code_runner.h"

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto focusDelay = 50ms;

} // namespace

AppState::AppState(const Services& services)
    : services_(services),
      codeRunner_(std::make_unique<CodeRunner>(services.notificationCenter, services.executableSearch)),
      notices_(std::make_unique<Notices>(services.scheduler)),
      runRequests_(std::make_unique<RunRequests>(*codeRunner_, *notices_, services.notificationCenter,
                                                 [this] { showOutputPage(); })),
      gitNotices_(std::make_unique<GitNotices>(*notices_, services.scheduler)),
      git_(std::make_unique<GitService>(std::make_shared<PatientRunner>(services.processRunner, gitNotices_->signs()))),
      repositoryFollower_(std::make_unique<RepositoryFollower>(*git_, services.scheduler)),
      largeFiles_(std::make_unique<LargeFiles>(
          *notices_, [this](const QUrl& url, const auto& text) { showLargeFile(url, text); })),
      linkRuns_(std::make_unique<LinkRuns>(
          services.userDefaults, services.scheduler, [this] { return currentDocument(); },
          [this] { runCurrentFile(); })),
      rewriter_(std::make_unique<DocumentRewriter>(
          *notices_, [this](const std::shared_ptr<Document>& document) { return documents_.contains(document); })),
      unsavedTexts_(std::make_unique<UnsavedTexts>(
          services.scheduler, *notices_, services.recoveryFolder,
          UnsavedTexts::Tabs{
              [this] { return documents_; },
              [this](const Documents& documents, qsizetype current) { showDocuments(documents, current); },
              [this](const QUrl& url, const FileIdentity& read) { watchedFiles_->willShow(url, read); }})),
      watchedFiles_(std::make_unique<WatchedFiles>(*notices_, services.scheduler)),
      ownReplacedFiles_(std::make_unique<ReplacedFilesFolder>(standardPaths::savedState() + u"/unsaved"_s)),
      saving_(std::make_unique<DocumentSaving>(
          *notices_, *watchedFiles_, services.replacedFiles != nullptr ? *services.replacedFiles : *ownReplacedFiles_,
          [this](const QUrl& file, const QByteArray& content) { return keepReplaced(file, content); }))
{
    connect(this, &AppState::documentsChanged, watchedFiles_.get(),
            [this] { watchedFiles_->setDocuments(documents_); });
    connect(gitNotices_.get(), &GitNotices::waitBegins, &unsavedTexts_->store(), &RecoveryStore::copyWhatIsDue);
    connect(this, &AppState::documentsChanged, linkRuns_.get(), [this] { linkRuns_->keepOnly(documents_); });
    connectGit();
    loadRecentFiles();
    tidyBeside(recentFiles_);
}

void AppState::connectGit()
{
    for (const auto gitHasEnded :
         {&GitService::statusChanged, &GitService::branchChanged, &GitService::stashesChanged}) {
        connect(git_.get(), gitHasEnded, watchedFiles_.get(), &WatchedFiles::lookAgain);
    }
    connect(this, &AppState::currentProjectChanged, repositoryFollower_.get(),
            [this] { repositoryFollower_->openProject(currentProject_); });
    connect(git_.get(), &GitService::cloned, this, [this](const QUrl& folder) {
        setCurrentProject(folder);
        Q_EMIT projectCloned();
    });
    gitNotices_->follow(git_->transfers());
}

AppState::~AppState() = default;

AppState& AppState::shared()
{
    static AppState state({FilePanels::shared(), UserDefaults::shared(), Scheduler::system(),
                           NotificationCenter::shared(), Log::system(), ProcessRunner::sharedSystem(),
                           ExecutableSearch(ProcessRunner::system()), standardPaths::savedState() + u"/unsaved"_s});
    return state;
}

// ---- Documents ------------------------------------------------------------------------------------------------------

std::shared_ptr<Document> AppState::currentDocument() const
{
    return documents_.value(currentDocumentIndex_);
}

void AppState::setDocuments(const Documents& documents)
{
    showDocuments(documents, currentDocumentIndex_);
}

void AppState::setCurrentDocumentIndex(qsizetype index)
{
    showDocuments(documents_, index);
}

void AppState::showDocuments(Documents documents, qsizetype currentIndex)
{
    // What is closed lives on until every observer has heard of it.
    const std::shared_ptr<Document> currentBefore = currentDocument();
    const Documents documentsBefore = std::exchange(documents_, std::move(documents));
    const qsizetype indexBefore = std::exchange(currentDocumentIndex_, currentIndex);
    const bool anotherIsCurrent = currentDocument() != currentBefore;
    const bool areOthersOpen = documents_ != documentsBefore;
    if (areOthersOpen) {
        Q_EMIT documentsChanged();
    }
    if (indexBefore != currentIndex) {
        Q_EMIT currentDocumentIndexChanged();
    }
    if (anotherIsCurrent) {
        Q_EMIT currentDocumentChanged();
    }
    if (areOthersOpen) {
        // By now the editors of those that were closed have given their texts back.
        unsavedTexts_->noteTabs(documentsBefore, currentBefore);
    }
}

void AppState::appendAndShow(std::shared_ptr<Document> document)
{
    Documents documents = documents_;
    documents.append(std::move(document));
    showDocuments(documents, documents.size() - 1);
}

void AppState::createNewTab()
{
    appendAndShow(std::make_shared<Document>(QString(), std::nullopt, std::nullopt, std::nullopt));
}

void AppState::openSnippet(const QString& code, Language language, const std::optional<LessonInfo>& lessonInfo)
{
    appendAndShow(std::make_shared<Document>(code, std::nullopt, language, lessonInfo));
    services_.scheduler.after(focusDelay, this,
                              [this] { services_.notificationCenter.post(notifications::focusEditor); });
}

void AppState::openFile(const QUrl& url)
{
    openFiles({url});
}

void AppState::openFiles(const QList<QUrl>& urls)
{
    Documents documents = documents_;
    qsizetype current = currentDocumentIndex_;
    QHash<QUrl, qsizetype> places;
    for (qsizetype index = documents.size() - 1; index >= 0; --index) {
        if (const auto& url = documents[index]->fileURL()) {
            places.insert(*url, index);
        }
    }
    QList<QUrl> opened;
    QList<FileFailure> failures;
    for (const QUrl& url : urls) {
        services_.log.write(u"📂 openFile called with: "_s + descriptionOf(url));
        services_.log.write(u"  📄 Extension: "_s + pathExtension(url));
        if (const auto place = places.constFind(url); place != places.cend()) {
            current = *place;
            services_.log.write(u"  ♻️ File already open at index "_s + QString::number(current));
            continue;
        }
        watchedFiles_->willRead(url);
        if (largeFiles_->isLarge(url)) {
            readLargeFile(url);
        } else if (std::shared_ptr<Document> document = makeDocument(url, readTextFile(url), failures)) {
            current = documents.size();
            places.insert(url, current);
            documents.append(std::move(document));
            opened.append(url);
        }
    }
    showDocuments(documents, current);
    putInRecentFiles(opened);
    tidyBeside(opened);
    reportFailures(*notices_, failures, u"opened"_s);
}

std::shared_ptr<Document> AppState::makeDocument(const QUrl& url, const std::variant<TextTree, FileError>& text,
                                                 QList<FileFailure>& failures)
{
    if (const auto* error = std::get_if<FileError>(&text)) {
        services_.log.write(u"  ❌ Error opening file: "_s + error->message);
        failures.append({url, *error});
        return nullptr;
    }
    auto document = std::make_shared<Document>(std::get<TextTree>(text), url, std::nullopt, std::nullopt);
    services_.log.write(u"  ✅ Document created with language: "_s + document->language().rawValue());
    return document;
}

void AppState::readLargeFile(const QUrl& url)
{
    if (largeFiles_->contains(url)) {
        services_.log.write(u"  ⏳ File is being opened already"_s);
    } else {
        largeFiles_->read(url);
    }
}

void AppState::showLargeFile(const QUrl& url, const std::optional<std::variant<TextTree, FileError>>& text)
{
    if (!text) {
        services_.log.write(u"  ⏹️ Opening stopped: "_s + descriptionOf(url));
        return;
    }
    QList<FileFailure> failures;
    const auto place = std::find_if(documents_.begin(), documents_.end(),
                                    [&url](const auto& document) { return document->fileURL() == url; });
    if (place != documents_.end()) {
        // It was saved there while it was read.
        setCurrentDocumentIndex(place - documents_.begin());
    } else if (std::shared_ptr<Document> document = makeDocument(url, *text, failures)) {
        appendAndShow(std::move(document));
        addToRecentFiles(url);
    }
    reportFailures(*notices_, failures, u"opened"_s);
}

void AppState::closeTab(qsizetype index)
{
    if (index < 0 || index >= documents_.size()) {
        return;
    }
    Documents documents = documents_;
    documents.removeAt(index);
    const bool isPastTheEnd = currentDocumentIndex_ >= documents.size();
    showDocuments(documents, isPastTheEnd ? std::max(documents.size() - 1, qsizetype(0)) : currentDocumentIndex_);
}

void AppState::closeOtherTabs(qsizetype index)
{
    if (index >= 0 && index < documents_.size()) {
        showDocuments({documents_[index]}, 0);
    }
}

// ---- Files ----------------------------------------------------------------------------------------------------------

void AppState::showOpenPanel()
{
    OpenPanelOptions options;
    options.canChooseDirectories = true;
    options.allowsMultipleSelection = true;
    options.startFolders = panelStart(*this);
    QList<QUrl> files;
    for (const ChosenURL& chosen : services_.filePanels.showOpenPanel(options)) {
        if (chosen.isDirectory) {
            setCurrentProject(chosen.url);
        } else {
            files.append(chosen.url);
        }
    }
    openFiles(files);
}

void AppState::saveCurrentDocument()
{
    const std::shared_ptr<Document> document = currentDocument();
    if (!document) {
        return;
    }
    if (!document->fileURL()) {
        saveCurrentDocumentAs();
        return;
    }
    save(document, *document->fileURL());
}

bool AppState::save(const std::shared_ptr<Document>& document, const QUrl& url)
{
    const std::optional<FileError> error = write(document, url);
    if (error) {
        services_.log.print(u"Error saving: "_s + error->message);
        reportFailures(*notices_, {{url, *error}}, u"saved"_s);
    }
    return !error;
}

void AppState::saveCurrentDocumentAs()
{
    const std::shared_ptr<Document> document = currentDocument();
    if (!document) {
        return;
    }
    const std::optional<QUrl> url = services_.filePanels.showSavePanel(
        {.allowedTypes = {ContentType::plainText, ContentType::sourceCode, ContentType::json, ContentType::xml},
         .suggestedName = suggestedName(*document),
         .startFolders = panelStart(*this)});
    if (!url) {
        return;
    }
    if (save(document, *url)) {
        addToRecentFiles(*url);
    }
}

void AppState::saveAllDocuments()
{
    const Documents documents = documents_;
    QList<FileFailure> failures;
    for (const std::shared_ptr<Document>& document : documents) {
        const std::optional<QUrl> url = document->fileURL();
        const std::optional<FileError> error = url && document->isModified() ? write(document, *url) : std::nullopt;
        if (error) {
            failures.append({*url, *error});
        }
    }
    reportFailures(*notices_, failures, u"saved"_s);
}

std::optional<FileError> AppState::write(const std::shared_ptr<Document>& document, const QUrl& url)
{
    std::optional<FileError> error = saving_->save(document, url);
    if (!error) {
        unsavedTexts_->store().noteSaved(*document);
        repositoryFollower_->noteChange();
        Q_EMIT fileUsed(url);
    }
    return error;
}

std::function<void()> AppState::keepReplaced(const QUrl& file, const QByteArray& content)
{
    const QString copy = unsavedTexts_->store().keepReplaced(file, content);
    return [this, file, content, copy] {
        const Language language = Language::from(pathExtension(file).toLower());
        auto document = std::make_shared<Document>(ShownBytes::of(content).text, std::nullopt, language, std::nullopt);
        document->setIsModified(true);
        appendAndShow(std::move(document));
        unsavedTexts_->store().remove(copy);
    };
}

void AppState::sortLines(bool ascending)
{
    rewriter_->rewrite(currentDocument(), u"Sorting lines…"_s,
                       [ascending](const QString& text) { return TextTransformer::sortLines(text, ascending); });
}

void AppState::runCurrentFile()
{
    const std::shared_ptr<Document> document = currentDocument();
    if (!document || linkRuns_->hasJustAskedAbout(document)) {
        return;
    }
    linkRuns_->putAway(document);
    showOutputPage();
    runRequests_->request(document);
}

void AppState::showOutputPage()
{
    setShowBottomPanel(true);
    setBottomPanelTab(BottomPanelTab::output);
}

// ---- The project ----------------------------------------------------------------------------------------------------

void AppState::setCurrentProject(const std::optional<QUrl>& project)
{
    if (currentProject_ == project) {
        return;
    }
    currentProject_ = project;
    Q_EMIT currentProjectChanged();
}

} // namespace kelm
