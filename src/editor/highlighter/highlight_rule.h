// One rule of the highlighter.
#pragma once

#include "platform/text/regular_expression.h"

#include <QColor>
#include <QString>

namespace kelm {

/// Whatever matches the pattern as a whole takes the colour; capture groups count for nothing.
struct HighlightRule
{
    QString pattern;
    QColor color;
    RegularExpression::Options options = RegularExpression::none;
};

} // namespace kelm
