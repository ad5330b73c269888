// Words in scripts that are written without blanks between them.
#pragma once

#include <QStringView>

#include <vector>

namespace kelm {

/// Where words part within a text in Thai, Lao, Khmer, Burmese, Chinese or Japanese, by ICU's dictionaries: the places
/// between two characters of such scripts, in their order. Nothing is said of places beside other characters, since
/// what parts words there is plain to see. A place is always one between two characters. Any thread.
///
/// A dictionary takes a text as a whole, and longer than linear: it is given a stretch of some hundred units.
std::vector<qsizetype> wordBreaks(QStringView text);

} // namespace kelm
