#include "git/panel/clone_form.h"

#include "platform/text/character_sets.h"

#include <QDir>
#include <QPointer>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

bool isBlank(const QString& text)
{
    return trimmed(text, isWhitespace).isEmpty();
}

/// A folder that is there, can be read and is not empty.
bool holdsSomething(const QString& path)
{
    const QDir folder(path);
    constexpr auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    return folder.exists() && folder.isReadable() && !folder.isEmpty(everything);
}

} // namespace

QString derivedFolderName(const QString& remoteURL)
{
    const QStringList pieces = remoteURL.split(u'/', Qt::SkipEmptyParts);
    return pieces.isEmpty() ? QString() : QString(pieces.last()).remove(u".git"_s);
}

CloneForm::CloneForm(GitService& git, FilePanels& filePanels, Scheduler& scheduler, QObject* parent)
    : QObject(parent), git_(git), filePanels_(filePanels), scheduler_(scheduler)
{}

bool CloneForm::canStart() const
{
    return !isBlank(remoteURL_) && destinationParent_ && !isBlank(destinationName_);
}

void CloneForm::setRemoteURL(const QString& url)
{
    if (url == remoteURL_) {
        return;
    }
    remoteURL_ = url;
    if (destinationName_.isEmpty()) {
        destinationName_ = derivedFolderName(url);
    }
    Q_EMIT changed();
}

void CloneForm::setDestinationParent(const std::optional<QUrl>& folder)
{
    destinationParent_ = folder;
    Q_EMIT changed();
}

void CloneForm::setDestinationName(const QString& name)
{
    if (name == destinationName_) {
        return;
    }
    destinationName_ = name;
    Q_EMIT changed();
}

void CloneForm::pickDestination()
{
    OpenPanelOptions options{
        .canChooseFiles = false, .canChooseDirectories = true, .prompt = u"Choose"_s, .kind = PanelKind::clone};
    if (destinationParent_) {
        options.startFolders = {destinationParent_->toLocalFile()};
    }
    const QList<ChosenURL> chosen = filePanels_.showOpenPanel(options);
    if (!chosen.isEmpty()) {
        setDestinationParent(chosen.first().url);
    }
}

void CloneForm::startClone()
{
    if (!destinationParent_) {
        return;
    }
    QString target = destinationParent_->toLocalFile();
    if (!target.endsWith(u'/')) {
        target += u'/';
    }
    target += destinationName_;
    if (holdsSomething(target)) {
        errorMessage_ = u"Target already exists and is not empty: "_s + target;
        Q_EMIT changed();
        return;
    }
    inProgress_ = true;
    errorMessage_.reset();
    Q_EMIT changed();
    git_.cloneRepo(remoteURL_, QUrl::fromLocalFile(target),
                   [form = QPointer<CloneForm>(this)](const GitOpResult& result) {
                       if (form) {
                           form->finish(result);
                       }
                   });
}

void CloneForm::finish(const GitOpResult& result)
{
    inProgress_ = false;
    if (result.isSuccess()) {
        didSucceed_ = true;
        scheduler_.after(closingDelay, this, [this] { dismiss(); });
    } else {
        errorMessage_ = result.message();
    }
    Q_EMIT changed();
}

void CloneForm::dismiss()
{
    if (!isPresented_) {
        return;
    }
    isPresented_ = false;
    Q_EMIT dismissed();
}

} // namespace kelm
