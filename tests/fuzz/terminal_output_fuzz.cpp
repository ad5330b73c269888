// What programs write for a terminal: what is no text is the same wherever the pieces are cut, and stays within the
// text. The first byte says how long pieces are.
#include "fuzz/require.h"
#include "run/escape_sequences.h"
#include "run/terminal_output.h"

#include <algorithm>
#include <cstdint>

namespace {

using namespace kelm;

/// A sign for each unit that is no text.
void mark(const std::vector<Stretch>& stretches, qsizetype length, qsizetype offset, QByteArray& marks)
{
    qsizetype end = 0;
    for (const Stretch& stretch : stretches) {
        require(stretch.start >= end && stretch.length > 0 && stretch.start + stretch.length <= length);
        end = stretch.start + stretch.length;
        std::fill_n(marks.begin() + offset + stretch.start, stretch.length, 'x');
    }
}

void checkPieces(const QString& text, qsizetype pieceLength)
{
    EscapeSequences whole;
    QByteArray atOnce(text.size(), ' ');
    mark(whole.take(text), text.size(), 0, atOnce);
    EscapeSequences pieces;
    QByteArray cut(text.size(), ' ');
    TerminalOutput output;
    for (qsizetype at = 0; at < text.size(); at += pieceLength) {
        const QString piece = text.mid(at, pieceLength);
        mark(pieces.take(piece), piece.size(), at, cut);
        const AttributedText shown = output.output(piece);
        QByteArray marks(shown.text.size(), ' ');
        mark(shown.unshown, shown.text.size(), 0, marks);
        const AttributedText error = output.error(piece);
        require(error.text == u'\n' + piece);
        marks = QByteArray(error.text.size(), ' ');
        mark(error.unshown, error.text.size(), 0, marks);
    }
    require(cut == atOnce);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const qsizetype pieceLength = 1 + data[0] % 32;
    checkPieces(QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1)), pieceLength);
    // As they stand, so that controls beyond ASCII come up too.
    checkPieces(QString::fromLatin1(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1)), pieceLength);
    return 0;
}
