// What the operands of a command line name.
#pragma once

#include "platform/events/open_request.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace kelm {

/// A line or a column: ASCII digits alone. 0 is the first, and what is too large the largest of 31 bits.
std::optional<quint32> placeNumber(QStringView digits);

/// What an operand that is not empty names. One with a scheme and "://" is a URL as it stands. Any other is a path,
/// taken from `workingDirectory` unless it is absolute; that of a folder gets a slash at its end. Of a path that names
/// nothing, a line and a column may be the end, as "notes.txt:12:5", with one more colon as compilers print it: as few
/// of them are taken off as leave a name that is there, and all of them where none is.
openRequest::Item itemOfOperand(const QString& operand, const QString& workingDirectory);

/// An operand that names what an item does, its place included.
QString operandOf(const openRequest::Item& item);

} // namespace kelm
