#include "text/view/offered_text.h"

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString plainTextFormat = u"text/plain"_s;

} // namespace

QStringList OfferedText::formats() const
{
    return {plainTextFormat};
}

bool OfferedText::hasFormat(const QString& format) const
{
    return format == plainTextFormat;
}

QVariant OfferedText::retrieveData(const QString& format, QMetaType /*type*/) const
{
    return hasFormat(format) ? QVariant(selected_->texts().join(u'\n')) : QVariant();
}

} // namespace kelm
