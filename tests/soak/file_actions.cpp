// Saving, and what other programs do to the files meanwhile.
#include "soak/action.h"
#include "soak/files_on_disk.h"
#include "soak/project_files.h"
#include "support/unprivileged.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

bool hasTab(World& world)
{
    return world.tabs.current() != nullptr;
}

bool hasFile(World& world)
{
    return hasTab(world) && world.tabs.current()->url && world.editor() != nullptr;
}

QUrl someNewPlace(World& world)
{
    const QStringList names{u"saved.txt"_s, u"saved as.json"_s, u"저장.md"_s, u"saved.py"_s};
    const QString name = world.chance.pick(names);
    return world.chance.oneIn(2) ? world.url(name) : QUrl::fromLocalFile(world.elsewhere.filePath(name));
}

void expectSavedAs(World& world, const std::optional<QUrl>& url)
{
    if (!url) {
        return;
    }
    ShadowDocument& document = *world.tabs.current();
    world.disk.expect(url->toLocalFile(), bytesOf(document.text()));
    document.url = url;
    document.saved();
}

void save(World& world)
{
    world.panels.saveAnswer = world.chance.oneIn(4) ? std::nullopt : std::optional(someNewPlace(world));
    const int panelsBefore = world.panels.savePanelsShown;
    ShadowDocument& document = *world.tabs.current();
    world.note(document.url ? document.url->fileName() : u"untitled"_s);
    QTest::keyClick(&world.text(), Qt::Key_S, Qt::ControlModifier);
    if (document.url) {
        world.expect(world.panels.savePanelsShown == panelsBefore, u"saving a file asks for a place"_s);
        expectSaved(world, document);
    } else {
        world.expect(world.panels.savePanelsShown == panelsBefore + 1, u"saving without a file asks for no place"_s);
        expectSavedAs(world, world.panels.saveAnswer);
    }
}

void saveAs(World& world)
{
    world.panels.saveAnswer = world.chance.oneIn(5) ? std::nullopt : std::optional(someNewPlace(world));
    world.note(world.panels.saveAnswer ? world.panels.saveAnswer->fileName() : u"cancelled"_s);
    QTest::keyClick(&world.text(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    expectSavedAs(world, world.panels.saveAnswer);
}

void saveAll(World& world)
{
    QTest::keyClick(&world.window, Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    for (ShadowDocument& document : world.tabs.all()) {
        if (document.url && document.isModified) {
            expectSaved(world, document);
        }
    }
}

/// A save into a folder that cannot be written to must leave file and flag as they were.
void saveIntoReadOnlyFolder(World& world)
{
    const QString path = world.tabs.current()->url->toLocalFile();
    const QFileInfo place(QFileInfo(path).canonicalFilePath());
    if (!place.exists()) {
        return;
    }
    const QByteArray folder = QFile::encodeName(place.path());
    TextView& view = world.text();
    // Others have to be let in where the tests run with all rights.
    ::chmod(QFile::encodeName(world.repository.path()).constData(), 0755);
    ::chmod(QFile::encodeName(world.elsewhere.path()).constData(), 0755);
    ::chmod(folder.constData(), 0555);
    {
        const test::Unprivileged unprivileged;
        QTest::keyClick(&view, Qt::Key_S, Qt::ControlModifier);
    }
    ::chmod(folder.constData(), 0755);
    // Whoever owns the file may write it in place.
    if (::geteuid() != 0) {
        expectSaved(world, *world.tabs.current());
    }
}

QByteArray otherBytes(World& world)
{
    static const std::vector<QByteArray> contents{"written by another\n",
                                                  "another\r\nprogram\r\n",
                                                  "",
                                                  "{\"another\": [1, 2, 3]}\n",
                                                  "{\n  a\n  b\n  {\n    c\n    d\n  }\n}\n",
                                                  "\xEF\xBB\xBF{\n one\n two\n}\n",
                                                  "no utf-8 \xFF\n",
                                                  "\xED\x95\x9C\xEA\xB8\x80\nreturn value\n"};
    return world.chance.pick(contents);
}

void writeFromOutside(World& world)
{
    const QUrl url = someFile(world);
    // The script that is run is not given other words.
    if (url.isEmpty() || url.fileName() == scriptName) {
        return;
    }
    world.note(url.fileName());
    QByteArray bytes = otherBytes(world);
    if (const auto old = world.disk.bytesOf(url.toLocalFile()); old && world.chance.oneIn(2)) {
        bytes = world.chance.oneIn(2) ? *old + bytes : bytes + *old;
    }
    world.disk.writeAsAnother(url.toLocalFile(), bytes.left(100000));
}

void removeFromOutside(World& world)
{
    const QUrl url = someFile(world);
    if (!url.isEmpty() && url.fileName() != scriptName) {
        world.note(url.fileName());
        world.disk.removeAsAnother(url.toLocalFile());
    }
}

/// A folder with all that is in it.
void removeFolder(World& world)
{
    const QString folder = world.path(u"nested/deep"_s);
    for (const QString& path : world.disk.paths()) {
        if (path.startsWith(folder + u'/')) {
            world.disk.removeAsAnother(path);
        }
    }
    QDir(folder).removeRecursively();
}

void renameFromOutside(World& world)
{
    const QString from = someFile(world).toLocalFile();
    const auto bytes = world.disk.bytesOf(from);
    if (from.isEmpty() || !bytes || QFileInfo(from).isSymLink() || from.endsWith(scriptName)) {
        return;
    }
    const QString to = world.path(u"renamed.txt"_s);
    world.note(QFileInfo(from).fileName());
    if (from != to) {
        world.disk.removeAsAnother(from);
        world.disk.writeAsAnother(to, *bytes);
    }
}

} // namespace

std::vector<Action> fileActions()
{
    return {
        {"save", 24, hasTab, save},
        {"save as", 4, hasTab, saveAs},
        {"save all", 3, nullptr, saveAll},
        {"save into a read-only folder", 4, hasFile, saveIntoReadOnlyFolder},
        {"another program writes", 8, nullptr, writeFromOutside},
        {"another program removes", 3, nullptr, removeFromOutside},
        {"another program removes a folder", 1, nullptr, removeFolder},
        {"another program renames", 1, nullptr, renameFromOutside},
    };
}

} // namespace kelm::soak
