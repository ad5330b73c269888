// Runs that failed because there was nothing to read.
#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace kelm {

/// How a language complains that its standard input has come to its end.
struct EndOfInputPattern
{
    QString language;
    /// A regular expression, looked for in the standard error; its "^" and "$" are those of lines.
    QString pattern;
};

const std::vector<EndOfInputPattern>& endOfInputPatterns();

/// How much of the end of a standard error is looked at: there a program says why it gave up.
constexpr qsizetype longestEndOfInputLook = 16384;

/// Whether the standard error of a failed run complains that there was nothing to read any more, at its end. Any
/// thread.
bool tellsOfEndOfInput(QStringView standardError);

} // namespace kelm
