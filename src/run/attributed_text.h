// Text with its colours, as a terminal shows it.
#pragma once

#include "platform/desktop/named_colors.h"

#include <QRgb>
#include <QString>
#include <QStringView>

#include <variant>
#include <vector>

namespace kelm {

/// A colour by its name, which looks different in a dark and in a light appearance, or one fixed colour.
using TextColor = std::variant<SystemColor, QRgb>;

QRgb resolved(const TextColor& color, Appearance appearance);

/// A stretch of text in one colour. Offset and length are in UTF-16 units.
struct AttributedRun
{
    qsizetype start = 0;
    qsizetype length = 0;
    TextColor color = QRgb(0);

    friend bool operator==(const AttributedRun&, const AttributedRun&) = default;
};

/// A stretch of text, in UTF-16 units.
struct Stretch
{
    qsizetype start = 0;
    qsizetype length = 0;

    friend bool operator==(const Stretch&, const Stretch&) = default;
};

/// A text and its runs, which cover it from its start to its end without a gap. No run is empty, and neighbours differ
/// in colour.
struct AttributedText
{
    QString text;
    std::vector<AttributedRun> runs;
    /// What belongs to the text and is not drawn, in order.
    std::vector<Stretch> unshown = {};

    bool isEmpty() const { return text.isEmpty(); }
    /// Appends `piece` in `color`; goes on with the last run when that has the same colour.
    void append(QStringView piece, const TextColor& color);

    friend bool operator==(const AttributedText&, const AttributedText&) = default;
};

} // namespace kelm
