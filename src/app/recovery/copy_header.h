// What a copy of a text says of itself.
#pragma once

#include "app/language/language.h"
#include "platform/files/file_identity.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QUrl>

#include <optional>

namespace kelm {

/// The header of a copy.
struct CopyHeader
{
    /// Where the text is saved; absent for a text that never was.
    std::optional<QUrl> url = std::nullopt;
    /// When the copy was made, in milliseconds since 1970.
    qint64 time = 0;
    /// The language that was chosen, where one was.
    std::optional<Language> language = std::nullopt;
    /// The state of the file when its text was read or written.
    std::optional<FileIdentity> identity = std::nullopt;
    /// Whether it is what a save has replaced, and no text that was typed.
    bool isReplaced = false;

    friend bool operator==(const CopyHeader&, const CopyHeader&) = default;

    /// The name of the file, or "Untitled".
    QString title() const;
};

QByteArray encodeHeader(const CopyHeader& header);
/// Absent for what is no header, and for one of a later version of the program.
std::optional<CopyHeader> decodeHeader(QByteArrayView bytes);

} // namespace kelm
