// What anybody may say to the program that listens: in whatever pieces it comes it means the same, what is no message
// stays none, and what is one comes back unit for unit when it is said again. The first byte says how long pieces are.
#include "platform/events/open_request.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using kelm::openRequest::Reader;
using kelm::openRequest::State;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const qsizetype pieceLength = 1 + data[0];
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    Reader whole;
    const State state = whole.add(bytes);
    Reader pieces;
    State sofar = State::incomplete;
    for (qsizetype at = 0; at < bytes.size() && sofar == State::incomplete; at += pieceLength) {
        sofar = pieces.add(QByteArrayView(bytes).sliced(at, std::min(pieceLength, bytes.size() - at)));
        if (sofar == State::complete && at + pieceLength < bytes.size()) {
            sofar = pieces.add(QByteArrayView(bytes).sliced(at + pieceLength));
        }
    }
    if (sofar != state || !(pieces.request() == whole.request())) {
        std::abort();
    }
    if (state == State::complete && kelm::openRequest::encode(whole.request()) != bytes) {
        std::abort();
    }
    return 0;
}
