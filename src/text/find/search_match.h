// One match of a search in a document.
#pragma once

#include "text/storage/text_range.h"

#include <QMetaType>
#include <QString>
#include <QUuid>

namespace kelm {

struct SearchMatch
{
    QUuid id = QUuid::createUuid();
    /// Where it stands in the document's text.
    TextRange range;
    /// Its line, from 1.
    qsizetype line = 1;
    /// Its column, from 1.
    qsizetype column = 1;
    /// The whole line in which it begins, without its end.
    QString lineText;
    QString matchText;

    friend bool operator==(const SearchMatch&, const SearchMatch&) = default;
};

} // namespace kelm

Q_DECLARE_METATYPE(kelm::SearchMatch)
