// The text of a document and its file.
#pragma once

#include "platform/files/file_error.h"
#include "text/storage/text_tree.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <variant>

namespace kelm {

/// A URL as messages name it.
QString descriptionOf(const QUrl& url);

/// The error of a URL that names no file of this machine.
FileError notLocal(const QUrl& url);

/// A text as the bytes of its file. Linear in it.
QByteArray encodedText(const TextTree& text);

/// Reads the UTF-8 file at `url` straight into the pieces of a text. `goesOn` is told now and then how much is read,
/// from 0 to 1, and ends the reading with false; it is called on any thread. From any thread.
std::variant<TextTree, FileError> readTextFile(const QUrl& url, const std::function<bool(double share)>& goesOn = {});

/// Writes a text to the file at `url` as UTF-8; the file stays as it was when that fails. From any thread.
std::optional<FileError> writeTextFile(const TextTree& text, const QUrl& url);

} // namespace kelm
