#include "editor/transforms/bounded_text.h"

#include <utility>

namespace kelm {

BoundedText::BoundedText(qsizetype expectedLength)
{
    grow(std::clamp<qsizetype>(expectedLength, 64, longestResult));
}

bool BoundedText::grow(qsizetype count)
{
    if (overflowed_ || count > longestResult - length_) {
        overflowed_ = true;
        text_.clear();
        units_ = nullptr;
        length_ = capacity_ = 0;
        return false;
    }
    capacity_ = std::clamp(capacity_ * 2, length_ + count, longestResult);
    text_.resize(capacity_);
    units_ = reinterpret_cast<char16_t*>(text_.data());
    return true;
}

std::optional<QString> BoundedText::take()
{
    if (overflowed_) {
        return {};
    }
    text_.resize(std::exchange(length_, 0));
    capacity_ = 0;
    units_ = nullptr;
    return std::exchange(text_, {});
}

} // namespace kelm
