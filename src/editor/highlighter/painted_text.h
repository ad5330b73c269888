// The colours of a text while rules paint it.
#pragma once

#include "text/storage/color_runs.h"

#include <QRgb>

#include <algorithm>
#include <span>
#include <vector>

namespace kelm {

/// One byte for each UTF-16 unit, the number of the coat of paint that lies on top there. Painting over costs nothing
/// but the bytes, and the runs of colours come out in one pass at the end.
class PaintedText
{
public:
    /// All units have coat 0.
    explicit PaintedText(qsizetype length) : coats_(static_cast<std::size_t>(length)) {}

    void paint(qsizetype start, qsizetype end, quint8 coat)
    {
        std::fill(coats_.begin() + start, coats_.begin() + end, coat);
    }

    /// The runs over the whole text, where coat n has the n-th of `colors`. Neighbours differ in colour.
    std::vector<ColorRun> runs(std::span<const QRgb> colors) const;

private:
    std::vector<quint8> coats_;
};

} // namespace kelm
