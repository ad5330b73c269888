// Any text as a link: it decodes to a lesson that keeps its promises, or to a failure.
#include "learning/lesson_link.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const QString& url : {text, QStringLiteral("kelmpane://open?") + text}) {
        const auto decoded = kelm::decodeLessonLink(url);
        const auto* link = std::get_if<kelm::LessonLink>(&decoded);
        if (link == nullptr || !link->lessonInfo) {
            continue;
        }
        if (link->lessonInfo->slug.isEmpty() || link->lessonInfo->requires_.contains(QString())) {
            std::abort();
        }
        kelm::lessonURL(*link->lessonInfo, true, QStringLiteral("https://site"));
    }
    return 0;
}
