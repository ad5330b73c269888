#include "learning/export_line.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

bool isNameUnit(QChar unit)
{
    return unit.unicode() < 0x80 && (unit.isLetterOrNumber() || unit == u'_');
}

bool isControl(QChar unit)
{
    return unit.category() == QChar::Other_Control;
}

QString quoted(const QString& word)
{
    return u"'"_s + QString(word).replace(u'\'', u"'\\''"_s) + u'\'';
}

/// The quotes in which most shells read escapes. For those that do not, they are plain quotes with no quote inside.
QString escaped(const QString& word)
{
    QString text = u"$'"_s;
    for (const QChar unit : word) {
        if (isControl(unit) || unit == u'\'' || unit == u'\\') {
            text += u"\\u%1"_s.arg(unit.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            text += unit;
        }
    }
    return text + u'\'';
}

} // namespace

QString exportLine(const QString& key)
{
    const QString word = key + u"=..."_s;
    if (std::all_of(key.begin(), key.end(), isNameUnit)) {
        return u"export "_s + word;
    }
    const bool hasControls = std::any_of(key.begin(), key.end(), isControl);
    return u"export "_s + (hasControls ? escaped(word) : quoted(word));
}

} // namespace kelm
