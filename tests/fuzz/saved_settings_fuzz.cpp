// Any bytes as the file of settings: it is read, a value can be put in, and what was read before is still there.
#include "fuzz/require.h"
#include "platform/files/user_defaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

using namespace kelm;

const QStringList keys{QStringLiteral("recentFiles"), QStringLiteral("selectedTheme"),
                       QStringLiteral("fontSize"),    QStringLiteral("a"),
                       QStringLiteral("b"),           QStringLiteral("group/c")};

/// All that a store says of a key.
struct Said
{
    bool isThere = false;
    std::optional<QString> string;
    std::optional<bool> boolean;
    std::optional<qint64> integer;
    std::optional<QByteArray> data;

    bool operator==(const Said&) const = default;
};

std::vector<Said> saidBy(const UserDefaults& store)
{
    std::vector<Said> all;
    for (const QString& key : keys) {
        store.real(key);
        all.push_back(
            {store.contains(key), store.string(key), store.boolean(key), store.integer(key), store.data(key)});
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The toolkit remembers files by their names.
    static const QTemporaryDir folder;
    static int number = 0;
    const QString path = folder.filePath(QString::number(number++));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly));
    require(file.write(reinterpret_cast<const char*>(data), qint64(size)) == qint64(size));
    file.close();

    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    auto store = std::make_unique<UserDefaults>(path);
    const std::vector<Said> before = saidBy(*store);
    for (const Said& said : before) {
        require(said.isThere || !(said.string || said.boolean || said.integer || said.data));
    }
    store->setString(QStringLiteral("kept/string"), text);
    store->setData(QStringLiteral("kept/data"), bytes);
    store->setInteger(QStringLiteral("kept/integer"), qint64(size));
    // A file that cannot be read as settings is not written to.
    if (store->synchronize()) {
        store = std::make_unique<UserDefaults>(path);
        require(saidBy(*store) == before);
        require(store->string(QStringLiteral("kept/string")) == text);
        require(store->data(QStringLiteral("kept/data")) == bytes);
        require(store->integer(QStringLiteral("kept/integer")) == qint64(size));
    }
    store.reset();
    file.remove();
    return 0;
}
