// Names in quotes, as git prints those that could be misread.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// How far the quoted name at the start of a text goes, behind its last quote; 0 where none stands there.
qsizetype quotedNameLength(QStringView text);

/// A name without the quotes that git puts around it where it holds blanks, quotes, control characters or bytes beyond
/// ASCII; in the form that `native_path.h` gives names of any bytes. A name that stands without quotes, or whose
/// quoting git would not write, is given as it is.
QString unquotedName(QStringView name);

} // namespace kelm
