// One look at the file of an open document.
#pragma once

#include "app/state/text_file.h"
#include "platform/files/file_identity.h"
#include "text/storage/text_tree.h"

#include <QUrl>
#include <QUuid>

#include <atomic>
#include <optional>
#include <variant>

namespace kelm {

/// What is needed to find out, away from the main thread, what became of a file.
struct FileLook
{
    /// What is at the file's place; nothing when none is there.
    using Sight = std::optional<FileIdentity>;

    enum class Outcome {
        same,     ///< nothing that was not known
        unquiet,  ///< another file than before, or none, which may still change
        gone,     ///< no file, for a while now
        sameText, ///< another file with the text that is known
        newText,  ///< another text
        unreadable
    };

    struct Finding
    {
        QUuid document;
        quint64 age = 0;
        Outcome outcome = Outcome::same;
        Sight sight = {};
        /// The file's text, which shares with the document's all that they have in common.
        TextTree text = {};
        std::optional<FileError> error = std::nullopt;
    };

    QUuid document;
    /// Comes back with what was found, so that it shows when it is about a file that has been written since.
    quint64 age = 0;
    QUrl url;
    /// The files that are known already.
    Sight known;
    Sight told;
    bool isGone = false;
    /// Whether what was told is to be read all the same.
    bool wantsReload = false;
    /// What the look before saw, when that was new.
    std::optional<Sight> before;
    TextTree fileText;
    TextTree documentText;

    /// Looks, and reads the file when it is new and quiet. From any thread.
    Finding operator()(const std::atomic<bool>& stop) const;

private:
    Finding read(Finding finding, const std::atomic<bool>& stop) const;
};

} // namespace kelm
