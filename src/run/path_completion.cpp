#include "run/path_completion.h"

#include "platform/files/native_path.h"
#include "run/path_names.h"

#include <dirent.h>
#include <memory>
#include <string_view>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The names in the folder that begin with `prefix`, in the file system's own order.
QStringList namesIn(const QString& folder, const QString& prefix)
{
    const auto close = [](DIR* stream) { ::closedir(stream); };
    const std::unique_ptr<DIR, decltype(close)> stream(::opendir(nativePath(folder).constData()), close);
    QStringList names;
    if (!stream) {
        return names;
    }
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view bytes = entry->d_name;
        if (bytes == "." || bytes == "..") {
            continue;
        }
        const QString name = pathOfNative(entry->d_name);
        if (name.startsWith(prefix)) {
            names.append(name);
        }
    }
    return names;
}

} // namespace

PathCompletion::PathCompletion(const QString& line, const QString& directory) : words_(line.split(u' '))
{
    const QString& word = words_.back();
    if (word.contains(u'/')) {
        const QString path = appendingPathComponent(directory, word);
        names_ = namesIn(deletingLastPathComponent(path), lastPathComponent(path));
    } else {
        names_ = namesIn(directory, word);
    }
}

QString PathCompletion::lineWith(const QString& name) const
{
    QStringList words = words_;
    QString& word = words.back();
    const QString parent = word.contains(u'/') ? deletingLastPathComponent(word) : QString();
    word = parent.isEmpty() ? name : parent + u'/' + name;
    return words.join(u' ');
}

} // namespace kelm
