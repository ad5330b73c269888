// Finds what can be folded in a text.
//
// Each scan is a pure function of the text and linear in it. A region needs a line of its own between the opening's and
// the closing's. Regions come in the order in which they were found, numbered from 0. An unpaired surrogate, like half
// of a pair, is a unit that matches nothing.
#pragma once

#include "editor/folding/foldable_region.h"

#include <QStringView>

#include <vector>

namespace kelm {

/// Spans from a "{" to its "}", found in the order of the closings. Lines end at line feeds alone. Braces behind "//"
/// and between double quotes do not count; a quote right behind a backslash is none, whatever stands before that, and a
/// string goes on over line ends. Block comments and single quotes are not known. A brace without a partner is passed
/// over.
std::vector<FoldableRegion> scanBraces(QStringView text);

/// Spans from a line to the last of the lines behind it that are indented deeper, in the order of the openings. Each
/// leading blank or tab counts one; lines of blanks and tabs alone are passed over. Lines end as `LineIndex` says.
std::vector<FoldableRegion> scanIndents(QStringView text);

/// Spans from an opening tag to its closing tag, found in the order of the closings. Lines end at line feeds alone.
///
/// Opening tags are the matches of `<([a-zA-Z][a-zA-Z0-9]*)\b[^>]*>`, closing ones of `</([a-zA-Z][a-zA-Z0-9]*)>`, each
/// pattern matched over the whole text for itself (`TagReader`). A closing tag belongs to the nearest opening tag of
/// its name that none has taken, whatever stands open in between. Void elements, comments and values with ">" are not
/// known.
std::vector<FoldableRegion> scanTags(QStringView text);

} // namespace kelm
