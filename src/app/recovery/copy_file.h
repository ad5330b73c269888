// The file of one copy, kept up with its text.
#pragma once

#include "app/recovery/copy_header.h"
#include "platform/files/file_error.h"
#include "platform/files/open_file.h"
#include "text/storage/text_tree.h"

#include <QByteArray>

#include <optional>
#include <utility>

namespace kelm {

/// Writes a copy so that at any moment, a kill included, its file holds the text as it was when it was written last, or
/// the one before that. A long text is copied once, and then its edits are put behind it, until they are as long as the
/// copy; then it is copied anew.
///
/// For one thread at a time.
class CopyFile
{
public:
    /// From this length on, in units, edits are put behind the copy.
    static constexpr qsizetype leastLong = 65536;

    explicit CopyFile(QByteArray nativePath) : path_(std::move(nativePath)) {}

    /// Has the file hold a text. What went wrong, the file being as it was then, or nothing.
    std::optional<FileError> write(const CopyHeader& header, const TextTree& text);
    const QByteArray& nativePath() const { return path_; }

    /// How many bytes were written in all; what tells a bench and a test that long texts are not written again and
    /// again.
    qint64 writtenBytes() const { return writtenBytes_; }

private:
    bool writeWhole(const CopyHeader& header, const TextTree& text);
    /// Nothing when the edits are to be put behind the copy no longer; else whether that went well.
    std::optional<bool> appendEdit(const CopyHeader& header, const TextTree& text);

    QByteArray path_;
    /// Open for what is put behind, while the file holds `text_`; closed for a short text.
    OpenFile file_;
    TextTree text_;
    CopyHeader header_;
    qint64 copySize_ = 0;
    qint64 size_ = 0;
    qint64 writtenBytes_ = 0;
};

} // namespace kelm
