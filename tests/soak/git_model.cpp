#include "soak/git_model.h"

#include <QMap>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

struct Entry
{
    bool isLink = false;
    QByteArray blob;

    friend bool operator==(const Entry&, const Entry&) = default;
};

QMap<QString, Entry> entriesOf(const World& world, const QByteArray& tree)
{
    QMap<QString, Entry> entries;
    const QByteArray listed = world.repository.git({u"ls-tree"_s, u"-r"_s, u"-z"_s, QString::fromUtf8(tree)});
    for (const QByteArray& line : listed.split('\0')) {
        const qsizetype tab = line.indexOf('\t');
        const QList<QByteArray> fields = line.left(tab).split(' ');
        if (tab > 0 && fields.size() == 3) {
            entries.insert(QString::fromUtf8(line.sliced(tab + 1)), {fields[0] == "120000", fields[2]});
        }
    }
    return entries;
}

void expectEntry(World& world, const QString& name, const Entry& entry)
{
    const QByteArray bytes = world.repository.git({u"cat-file"_s, u"blob"_s, QString::fromUtf8(entry.blob)});
    const QString path = world.path(name);
    // What stands in its place is put aside, a link as well.
    world.disk.expectNone(path);
    if (entry.isLink) {
        world.disk.expectLink(path, QFileInfo(path).path() + u'/' + QFile::decodeName(bytes));
    } else {
        world.disk.expect(path, bytes);
    }
}

} // namespace

QByteArray gitText(const World& world, const QStringList& arguments)
{
    return world.repository.git(arguments).trimmed();
}

bool isClean(const World& world, bool untrackedToo)
{
    return gitText(world, {u"status"_s, u"--porcelain"_s, untrackedToo ? u"-uall"_s : u"-uno"_s}).isEmpty();
}

void expectTree(World& world, const QByteArray& from, const QByteArray& to)
{
    const QMap<QString, Entry> before = entriesOf(world, from);
    const QMap<QString, Entry> after = entriesOf(world, to);
    for (auto entry = before.begin(); entry != before.end(); ++entry) {
        if (!after.contains(entry.key())) {
            world.disk.expectNone(world.path(entry.key()));
        }
    }
    for (auto entry = after.begin(); entry != after.end(); ++entry) {
        if (!before.contains(entry.key()) || before.value(entry.key()) != *entry) {
            expectEntry(world, entry.key(), *entry);
        }
    }
}

void expectFromIndex(World& world, const QString& name)
{
    const QByteArray line = world.repository.git({u"ls-files"_s, u"-s"_s, u"--"_s, name}).split('\n').first();
    const QList<QByteArray> fields = line.split('\t').first().split(' ');
    if (fields.size() == 3) {
        expectEntry(world, name, {fields[0] == "120000", fields[1]});
    }
}

qsizetype hunkCount(const World& world, const QString& name)
{
    const QByteArray diff = world.repository.git({u"diff"_s, u"--"_s, name});
    return diff.count("\n@@ ");
}

} // namespace kelm::soak
