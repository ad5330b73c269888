#include "app/state/text_file.h"

#include "platform/files/atomic_file.h"
#include "platform/files/file_url.h"
#include "platform/files/utf8_file.h"
#include "platform/files/utf8_file_reader.h"
#include "text/storage/text_tree_builder.h"

#include <utility>
#include <vector>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Has a tree's pieces made of each section while it is read.
class TreeSink final : public Utf8Sink
{
public:
    explicit TreeSink(const std::function<bool(double)>& goesOn) : goesOn_(goesOn) {}

    void begin(int sections, qint64) override
    {
        builders_.clear();
        builders_.resize(std::size_t(sections));
    }
    void append(int section, QStringView units) override { builders_[std::size_t(section)].append(units); }
    bool goesOn(double share) override { return !goesOn_ || goesOn_(share); }

    TextTree take()
    {
        TextTreeBuilder whole;
        for (TextTreeBuilder& section : builders_) {
            whole.append(std::move(section));
        }
        return whole.take();
    }

private:
    const std::function<bool(double)>& goesOn_;
    std::vector<TextTreeBuilder> builders_;
};

} // namespace

QString descriptionOf(const QUrl& url)
{
    return url.toString(QUrl::FullyEncoded);
}

FileError notLocal(const QUrl& url)
{
    return {descriptionOf(url) + u": The URL is not that of a file."_s, u"that is no address of a file"_s};
}

QByteArray encodedText(const TextTree& text)
{
    QByteArray bytes;
    bytes.reserve(text.length());
    // Half of a pair of surrogates at a piece's end, which is encoded with the other half.
    QString held;
    text.forEachPiece({0, text.length()}, [&](QStringView piece) {
        const bool isCut = piece.back().isHighSurrogate();
        const QStringView whole = piece.chopped(isCut ? 1 : 0);
        bytes += held.isEmpty() ? encodeUtf8Text(whole) : encodeUtf8Text(held + whole.toString());
        held = isCut ? QString(piece.back()) : QString();
        return true;
    });
    return bytes + encodeUtf8Text(held);
}

std::variant<TextTree, FileError> readTextFile(const QUrl& url, const std::function<bool(double)>& goesOn)
{
    if (!url.isLocalFile()) {
        return notLocal(url);
    }
    TreeSink sink(goesOn);
    if (std::optional<FileError> error = readUtf8File(filePath(url), sink)) {
        return *std::move(error);
    }
    return sink.take();
}

std::optional<FileError> writeTextFile(const TextTree& text, const QUrl& url)
{
    return url.isLocalFile() ? writeAtomically(filePath(url), encodedText(text)) : notLocal(url);
}

} // namespace kelm
