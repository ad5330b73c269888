#include "learning/view/lesson_way_back.h"

#include "learning/lesson_link.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// No browser takes a longer address.
constexpr qsizetype mostOfAddress = 8192;

std::optional<QString> addressOf(const LessonInfo& lesson, bool hasCompanion)
{
    return lessonURL(lesson, hasCompanion, QStringLiteral(KELM_LESSON_SITE));
}

} // namespace

void LessonWayBack::setLesson(const LessonInfo& lessonInfo)
{
    opensWhenFound_ = false;
    address_.reset();
    asking_.stop();
    const bool isLong = lessonInfo.slug.size() + lessonInfo.lang.value_or(QString()).size() > mostOfAddress;
    exists_ = !isLong && (addressOf(lessonInfo, false) || addressOf(lessonInfo, true));
    if (!exists_) {
        return;
    }
    const LessonInfo lesson{.slug = lessonInfo.slug, .lang = lessonInfo.lang};
    asking_.start([this, lesson, &workspace = workspace_](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        const bool hasCompanion = workspace.applicationForScheme(u"tutorbay"_s).has_value();
        return [this, lesson, hasCompanion] {
            address_ = addressOf(lesson, hasCompanion);
            if (!address_) {
                return;
            }
            Q_EMIT found(*address_);
            if (std::exchange(opensWhenFound_, false)) {
                workspace_.openURL(QUrl(*address_));
            }
        };
    });
}

void LessonWayBack::open()
{
    if (address_) {
        workspace_.openURL(QUrl(*address_));
    } else {
        opensWhenFound_ = true;
    }
}

} // namespace kelm
