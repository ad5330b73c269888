#include "platform/text/string_comparison.h"

#include "platform/text/canonical_text.h"

#include <QLocale>

#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace kelm {

namespace {

/// A technical locale would order all capitals before all small letters.
icu::Locale collationLocale(const QString& localeName)
{
    const icu::Locale locale(localeName.toLatin1().constData());
    const QLatin1String language(locale.getLanguage());
    const bool isTechnical =
        language == QLatin1String("c") || QLatin1String(locale.getVariant()) == QLatin1String("POSIX");
    return locale.isBogus() || isTechnical ? icu::Locale::getRoot() : locale;
}

std::unique_ptr<const icu::Collator> makeCollator(const QString& localeName)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(collationLocale(localeName), status));
    if (U_FAILURE(status)) {
        return nullptr;
    }
    collator->setStrength(icu::Collator::SECONDARY);
    // Without this, texts with accents in another order than the canonical one would not be found equal.
    collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
    return collator;
}

/// The name of the locale that the environment sets for collation.
QString currentLocaleName()
{
    for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        QString value = qEnvironmentVariable(name);
        if (!value.isEmpty()) {
            return value;
        }
    }
    return QLocale::system().name();
}

} // namespace

StringComparison::StringComparison(const QString& localeName) : collator_(makeCollator(localeName)) {}

int StringComparison::localizedCaseInsensitiveCompare(QStringView a, QStringView b) const
{
    if (!collator_) {
        return decomposedWithoutCase(a).compare(decomposedWithoutCase(b));
    }
    if (hasManyMarks(a) || hasManyMarks(b)) {
        // The collation orders the marks anew at each step, but not those that stand in order.
        return compareOrdered(decomposed(a), decomposed(b));
    }
    return compareOrdered(a, b);
}

int StringComparison::compareOrdered(QStringView a, QStringView b) const
{
    UErrorCode status = U_ZERO_ERROR;
    return collator_->compare(a.utf16(), int32_t(a.size()), b.utf16(), int32_t(b.size()), status);
}

QByteArray StringComparison::sortKey(QStringView text) const
{
    QByteArray key;
    appendSortKey(key, text);
    key.squeeze();
    return key;
}

void StringComparison::appendSortKey(QByteArray& keys, QStringView text) const
{
    if (!collator_) {
        const QString key = decomposedWithoutCase(text);
        for (const QChar unit : key) {
            keys.append(char(unit.row())).append(char(unit.cell()));
        }
        return;
    }
    if (hasManyMarks(text)) {
        appendKeyOfOrdered(keys, decomposed(text));
    } else {
        appendKeyOfOrdered(keys, text);
    }
}

void StringComparison::appendKeyOfOrdered(QByteArray& keys, QStringView text) const
{
    const qsizetype start = keys.size();
    const auto make = [&](qsizetype room) {
        keys.resize(start + room);
        return qsizetype(collator_->getSortKey(text.utf16(), int32_t(text.size()),
                                               reinterpret_cast<uint8_t*>(keys.data() + start), int32_t(room)));
    };
    // Most keys fit into twice the text's length: the second call is the exception.
    const qsizetype room = 2 * text.size() + 16;
    qsizetype length = make(room);
    if (length > room) {
        length = make(length);
    }
    // Without the NUL that ends the key.
    keys.truncate(start + length - 1);
}

const StringComparison& StringComparison::current()
{
    static const StringComparison comparison(currentLocaleName());
    return comparison;
}

} // namespace kelm
