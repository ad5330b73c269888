// Looking for a text as a person means it, letter case aside.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <functional>
#include <vector>

namespace kelm {

/// A text to look for: letter case does not matter, and texts that are canonically equivalent (Unicode, UAX #15) are
/// the same. A match covers whole characters, so that "e" is not found in a decomposed "é". An empty text is found
/// nowhere.
class LocalizedNeedle
{
public:
    explicit LocalizedNeedle(const QString& text);

    /// Linear in the length of `text`.
    bool isIn(QStringView text) const;

    /// The same for a text of any length, looked at in stretches of `stretch` units or a few times the text that is
    /// looked for: `isCancelled` is asked before each, and ends the look with false.
    bool isIn(QStringView text, const std::function<bool()>& isCancelled, qsizetype stretch = usualStretch) const;
    static constexpr qsizetype usualStretch = qsizetype(1) << 18;

    /// Whether UTF-8 `bytes` can hold the text at all. A quick look that never says no to bytes that do.
    bool mayBeIn(QByteArrayView bytes) const;
    /// How many bytes two stretches must have in common for the quick look at both to see what a look at the whole
    /// would.
    qsizetype quickLookOverlap() const { return ascii_.size() + 3; }

private:
    bool isInFolded(const QString& folded) const;
    bool isInAscii(QStringView text) const;

    template <typename Fold, typename Accept>
    bool isAnywhere(QStringView text, Fold fold, Accept accept) const;

    QString folded_;
    /// For each beginning of `folded_`, the length of the longest shorter beginning that it ends with.
    std::vector<qsizetype> fallbacks_;
    /// The text in lower case when it is all ASCII, else empty.
    QByteArray ascii_;
    /// The place in `ascii_` of its rarest sign.
    qsizetype rarest_ = 0;
};

} // namespace kelm
