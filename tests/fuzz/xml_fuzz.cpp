// XML texts of any units: formatting changes white space alone and leaves a well-formed document well formed.
#include "editor/transforms/xml_formatter.h"
#include "editor/transforms/xml_markup.h"
#include "editor/transforms/xml_well_formed.h"

#include <cstdint>
#include <cstdlib>

static QString packed(QString text)
{
    return text.removeIf([](QChar unit) { return kelm::isXmlBlank(unit); });
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString once = kelm::formatXml(text);
    if (!QStringView(text).isValidUtf16() || kelm::checkXml(text) != kelm::XmlVerdict::wellFormed) {
        return 0;
    }
    if (packed(once) != packed(text) || kelm::checkXml(once) != kelm::XmlVerdict::wellFormed ||
        kelm::formatXml(once) != once) {
        std::abort();
    }
    return 0;
}
