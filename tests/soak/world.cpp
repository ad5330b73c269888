#include "soak/world.h"

#include "soak/project_files.h"

#include <QApplication>

#include <memory>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int longestWait = 30000;

FakeFilePanels& installPanels()
{
    auto panels = std::make_unique<FakeFilePanels>();
    FakeFilePanels& installed = *panels;
    FilePanels::install(std::move(panels));
    return installed;
}

/// What git starts with, whatever this machine's user has set up.
quint32 afterGitIsSetUp(quint32 seed)
{
    test::useFixedGitEnvironment();
    return seed;
}

} // namespace

World::World(quint32 seed)
    : chance(afterGitIsSetUp(seed)),
      panels(installPanels()),
      state({panels, defaults, Scheduler::system(), NotificationCenter::shared(), log, ProcessRunner::sharedSystem(),
             ExecutableSearch(ProcessRunner::system()), unsavedFolder()}),
      themes({defaults, log, store.path(), [](Appearance) {}}),
      window({state, themes, workspace, defaults, updates}),
      disk({repository.path(), elsewhere.path(), temporary.path(), QDir::homePath()})
{
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    QDir::setCurrent(elsewhere.path());
    restoreProject();
    state.setCurrentProject(repository.url());
    window.show();
    bringToFront();
}

World::~World() = default;

void World::restoreProject()
{
    const QFileInfoList old =
        QDir(repository.path()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : old) {
        entry.isDir() && !entry.isSymLink() ? QDir(entry.filePath()).removeRecursively()
                                            : QFile::remove(entry.filePath());
    }
    for (const QFileInfo& entry : QDir(elsewhere.path()).entryInfoList(QDir::Files)) {
        QFile::remove(entry.filePath());
    }
    repository.git({u"init"_s, u"-q"_s});
    for (const ProjectFile& file : projectFiles()) {
        repository.write(file.name, file.bytes);
    }
    QFile::link(linkTarget, path(linkName));
    repository.commitAll(u"first"_s);
    disk.learn();
}

TextView& World::text()
{
    TextView& view = editor()->textView();
    bringToFront();
    if (!view.hasFocus()) {
        view.setFocus();
    }
    return view;
}

void World::bringToFront()
{
    if (!window.isActiveWindow()) {
        window.activateWindow();
        waitFor([this] { return window.isActiveWindow(); }, u"the window is active"_s);
    }
}

void World::settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

bool World::waitFor(const std::function<bool()>& condition, const QString& what)
{
    return expect(QTest::qWaitFor(condition, longestWait), u"waited in vain: "_s + what);
}

void World::fail(const QString& what)
{
    if (!failure) {
        failure = what;
    }
}

QString howTheyDiffer(const QString& expected, const QString& found)
{
    constexpr qsizetype shown = 40;
    const auto place = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
    const qsizetype at = place.first - expected.begin();
    const auto excerpt = [at](const QString& text) {
        return QString::fromLatin1(
            text.mid(std::max<qsizetype>(0, at - shown / 2), shown).toUtf8().toPercentEncoding(" "));
    };
    return u"they differ at unit %1 (%2 units expected, %3 found): expected \"%4\", found \"%5\""_s.arg(
        QString::number(at), QString::number(expected.size()), QString::number(found.size()), excerpt(expected),
        excerpt(found));
}

} // namespace kelm::soak
