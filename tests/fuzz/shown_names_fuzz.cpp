// Names of any units, two of them, a line each: what is shown of them can be seen and tells them apart, and what git
// puts into quotes comes out of them.
#include "fuzz/require.h"
#include "platform/files/native_path.h"
#include "platform/text/quoted_name.h"
#include "platform/text/shown_name.h"

#include <algorithm>
#include <cstdint>

namespace {

using namespace kelm;

/// A name as git prints it where it quotes every byte.
QString quoted(const QByteArray& bytes)
{
    QString text(u'"');
    for (const char byte : bytes) {
        text += u'\\' + QString::number(static_cast<unsigned char>(byte), 8).rightJustified(3, u'0');
    }
    return text + u'"';
}

bool isUnseen(QChar unit)
{
    const QChar::Category category = unit.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph || unit == QChar(0x202e) || unit == QChar(0x2066);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString first = pathOfNative(bytes.left(bytes.indexOf('\n')));
    const QString second = pathOfNative(bytes.mid(bytes.indexOf('\n') + 1));
    require((shownName(first) == shownName(second)) == (first == second));
    for (const QString& name : {first, second}) {
        const QString shown = shownName(name);
        require(shown.isEmpty() == name.isEmpty() && std::none_of(shown.begin(), shown.end(), isUnseen));
        require(!shown.startsWith(u' ') && !shown.endsWith(u' '));
        const qsizetype length = quotedNameLength(name);
        require(length >= 0 && length != 1 && length <= name.size());
        require(length == name.size() || unquotedName(name) == name);
    }
    require(unquotedName(quoted(bytes)) == pathOfNative(bytes));
    return 0;
}
