// Any bytes as the file of a copy: what is read comes back from its own writing, and everything else is refused.
//
// Checksums would keep a fuzzer out of all that lies behind them: the input is also taken as the contents of records,
// which are given right ones.
#include "app/recovery/copy_records.h"
#include "fuzz/require.h"

#include <QBuffer>

#include <algorithm>
#include <cstdint>

namespace {

using namespace kelm;

template <typename Read>
auto readFrom(QByteArray bytes, const Read& read)
{
    QBuffer buffer(&bytes);
    require(buffer.open(QIODevice::ReadOnly));
    return read(buffer);
}

void look(const QByteArray& bytes)
{
    const auto content = readFrom(bytes, [](QIODevice& device) { return readCopy(device); });
    const auto summary = readFrom(bytes, [](QIODevice& device) { return readCopySummary(device); });
    if (!content) {
        return;
    }
    require(summary.has_value());
    QByteArray again = copyMark.toByteArray() + copyRecord(CopyRecord::header, encodeHeader(content->header));
    forEachTextRecord(content->text, [&again](const QByteArray& record) {
        again += record;
        return true;
    });
    const auto reread = readFrom(again, [](QIODevice& device) { return readCopy(device); });
    require(reread && reread->text == content->text && reread->header == content->header);
}

/// Records of which each begins with its kind and the number of its bytes.
QByteArray copyOfRecords(QByteArrayView input)
{
    QByteArray bytes = copyMark.toByteArray();
    while (input.size() >= 2) {
        const auto kind = CopyRecord(input[0]);
        const qsizetype size = std::min(qsizetype(std::uint8_t(input[1])), input.size() - 2);
        bytes += copyRecord(kind, input.sliced(2, size));
        input = input.sliced(2 + size);
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), qsizetype(size));
    look(input);
    look(copyOfRecords(input));
    if (const std::optional<CopyHeader> header = decodeHeader(input)) {
        require(decodeHeader(encodeHeader(*header)) == header);
    }
    return 0;
}
