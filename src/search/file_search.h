// The lines of one file that hold a text.
#pragma once

#include "platform/files/open_file.h"
#include "search/localized_needle.h"
#include "search/search_result.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace kelm {

class LinePiecesReader;

/// Searches files, one after the other. A file is read in pieces of a megabyte, and a line is held whole: with all that
/// is made of it that takes seven bytes for each of the line's, at most a quarter of a gigabyte. One thread.
class FileSearch
{
public:
    /// The longest file and the longest line that are searched, in bytes. Of longer lines some are searched too.
    struct Limits
    {
        qint64 file = qint64(1) << 30;
        qsizetype line = qsizetype(32) << 20;
    };

    /// Not all of the file was searched: it, or a line of it, is longer than the limits have it.
    enum class Outcome { searched, tooLong };

    using OnResult = std::function<void(SearchResult)>;

    /// All of it outlives the search. `isCancelled` is asked between pieces and lines, and ends the search of a file.
    FileSearch(const LocalizedNeedle& needle, const std::function<bool()>& isCancelled, Limits limits)
        : needle_(needle), isCancelled_(isCancelled), limits_(limits)
    {}

    /// Tells each line that holds the text, once and in order, of a regular file that is UTF-8 from start to end; what
    /// cannot be read, or is no UTF-8, counts as searched. Such a file tells no line unless it changes meanwhile.
    Outcome search(const QByteArray& path, const OnResult& onResult);

private:
    Outcome searchPieces(const OpenFile& file, const QByteArray& path, qsizetype read, const OnResult& onResult);
    bool mayBeInFile(const OpenFile& file, qsizetype read);
    std::optional<Outcome> refuse(const OpenFile& file);
    bool decode(QByteArrayView bytes);
    bool isIn(QStringView line) const;

    /// Where the lines of a text belong.
    struct Place
    {
        const QByteArray& path;
        QUrl url = {};
        QString name = {};
        qsizetype line = 1;
    };
    void searchLines(Place& place, const OnResult& onResult) const;

    const LocalizedNeedle& needle_;
    const std::function<bool()>& isCancelled_;
    Limits limits_;
    /// They serve for all files, and are as long as the longest needs.
    QByteArray bytes_;
    QString text_;
    qsizetype textLength_ = 0;
};

} // namespace kelm
