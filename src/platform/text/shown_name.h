// Names that other people chose, as they are shown.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// A name with a visible sign for each character that is not seen: control characters and line feeds as their pictures,
/// U+240A for a line feed; blanks at the start and the end as U+2420; what has no width, turns the direction of a text
/// or only looks like a blank as its number in angle brackets, "⟨U+202E⟩"; a byte that is not UTF-8, in the form of
/// `pathOfNative`, as "⟨E9⟩". The signs themselves stand as numbers too, so that two names never look the same because
/// of a character that cannot be seen.
QString shownName(QStringView name);

} // namespace kelm
