// Comparison of texts as people order them.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <unicode/coll.h>

#include <memory>

namespace kelm {

/// Orders texts by the collation of a language, with letter case ignored and accents counted, and with canonically
/// equal texts equal. Reading is safe from any thread.
class StringComparison
{
public:
    /// The order of a locale such as "ko_KR". An empty, unknown or technical ("C", "POSIX") name gives the order that
    /// languages share.
    explicit StringComparison(const QString& localeName);

    /// The order that a system without collation data gets: case folding under canonical equivalence, unit by unit.
    static StringComparison byFolding() { return {}; }

    /// Less than 0 when `a` goes before `b`, 0 when they are equal but for case, greater than 0 when `a` goes after
    /// `b`.
    int localizedCaseInsensitiveCompare(QStringView a, QStringView b) const;

    /// Bytes that compare as `localizedCaseInsensitiveCompare` does; for sorting many texts.
    QByteArray sortKey(QStringView text) const;
    /// Puts the same bytes behind others, where many of them have one place in memory.
    void appendSortKey(QByteArray& keys, QStringView text) const;

    /// The order of the user's locale, as the process found it when it was first asked.
    static const StringComparison& current();

private:
    StringComparison() = default;

    int compareOrdered(QStringView a, QStringView b) const;
    void appendKeyOfOrdered(QByteArray& keys, QStringView text) const;

    std::unique_ptr<const icu::Collator> collator_;
};

} // namespace kelm
