// The parts of a URL that the program looks at.
#pragma once

#include <QString>
#include <QUrl>

namespace kelm {

/// The path of the URL, percent-decoded: where the file stands, for a file URL. Bytes that are not UTF-8, as which a
/// URL can hold them, are those of `nativePath`.
QString filePath(const QUrl& url);

/// The URL of a path, which `filePath` gives again whatever bytes its names hold.
QUrl urlOfFile(const QString& path);

/// The last component of the URL's path as it is shown, percent-decoded, without a slash at its end: "src" for
/// "file:///a/src/". Empty for a URL without a path; "/" for the root.
QString lastPathComponent(const QUrl& url);

/// The path of a folder with one slash at its end, whether or not its URL has one: what the paths of its entries begin
/// with.
QString folderPrefix(const QUrl& folder);

/// What follows the last dot of the last path component, without the dot; empty when there is no dot, when it is the
/// first character (".bashrc"), or when it is the last.
QString pathExtension(const QUrl& url);

/// Whether a file URL names a folder: by a slash at its end, or since there is a folder of that path. No URL of another
/// scheme does.
bool hasDirectoryPath(const QUrl& url);

} // namespace kelm
