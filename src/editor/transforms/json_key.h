// The order in which the keys of a JSON object are printed.
#pragma once

#include <QStringView>

#include <string>

namespace kelm {

/// A key of an object, made ready to be compared. It keeps the view it is given.
///
/// Runs of ASCII digits compare by their value, everything else by the code points of its case-folded canonical
/// decomposition; a beginning of the other key goes before it. Keys that are equal so far are forced apart by their
/// first difference as they are written: the shorter run of digits ("7" before "007") or the lower code unit ("A"
/// before "a") goes first. So only keys that are equal unit for unit are equal.
///
/// ICU's collation, tried with numbers by value, puts "x_" before "x1" and "😀" before "\ufb1d" at every strength.
class JsonKey
{
public:
    explicit JsonKey(QStringView text);

    QStringView text() const { return text_; }

    /// Less than, equal to or greater than 0 as key `a` is printed before, is, or is printed after `b`.
    static int compare(const JsonKey& a, const JsonKey& b);

private:
    QStringView text_;
    /// Empty for a key that is ASCII alone, as nearly all are: that is folded while it is read.
    std::u32string folded_;
};

} // namespace kelm
