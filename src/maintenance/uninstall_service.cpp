#include "maintenance/uninstall_service.h"

#include "maintenance/application_image.h"
#include "platform/events/main_queue.h"
#include "platform/files/standard_paths.h"
#include "platform/files/user_defaults.h"
#include "platform/text/shown_name.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStringList>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

struct PlanField
{
    const char* label;
    std::optional<QUrl> UninstallService::Plan::*url;
};

constexpr std::array planFields{
    PlanField{"App bundle", &UninstallService::Plan::appBundle},
    PlanField{"Application Support", &UninstallService::Plan::supportDir},
    PlanField{"Caches", &UninstallService::Plan::cachesDir},
    PlanField{"Preferences", &UninstallService::Plan::preferences},
    PlanField{"Saved state", &UninstallService::Plan::savedState},
};

constexpr int keepUserDataAnswer = 1;
constexpr int removeEverythingAnswer = 2;

const QString message = u"Move KelmWright to the Trash?"_s;
const QString advice =
    u"This will move the KelmWright app and its user data to the Trash. You can drag them back out if "
    u"you change your mind.\n\nThe following will be moved:\n"_s;

bool exists(const std::optional<QUrl>& url)
{
    return url && QFileInfo::exists(url->toLocalFile());
}

QString programFile()
{
    if (QString image = applicationImage(); !image.isEmpty()) {
        return image;
    }
    const QString file = QCoreApplication::applicationFilePath();
    const qsizetype bundle = file.indexOf(u".app/Contents/MacOS/"_s);
    return bundle < 0 ? file : file.left(bundle + 4);
}

} // namespace

UninstallService::Plan UninstallService::currentPlan()
{
    return {QUrl::fromLocalFile(programFile()), QUrl::fromLocalFile(standardPaths::applicationSupport()),
            QUrl::fromLocalFile(standardPaths::caches()), QUrl::fromLocalFile(standardPaths::preferences()),
            QUrl::fromLocalFile(standardPaths::savedState())};
}

QString UninstallService::itemsList(const Plan& plan)
{
    QStringList lines;
    for (const PlanField& field : planFields) {
        if (const auto& url = plan.*field.url; exists(url)) {
            lines.append(u"  • "_s + QString::fromLatin1(field.label) + u": "_s + shownName(url->toLocalFile()));
        }
    }
    return lines.join(u'\n');
}

void UninstallService::confirmAndRun()
{
    // What is not written yet would be written behind the file's back.
    services_.userDefaults.synchronize();
    confirmAndRun(currentPlan());
}

void UninstallService::confirmAndRun(const Plan& plan)
{
    const std::optional<int> answer = services_.alerts.runWarning(
        {message, advice + itemsList(plan), {u"Cancel"_s, u"Keep User Data, Remove App"_s, u"Remove Everything"_s}});
    if (answer == keepUserDataAnswer || answer == removeEverythingAnswer) {
        performAndQuit(plan, answer == keepUserDataAnswer);
    }
}

void UninstallService::performAndQuit(const Plan& plan, bool keepUserData)
{
    QList<QUrl> urls;
    const auto addIfItExists = [&urls](const std::optional<QUrl>& url) {
        if (exists(url)) {
            urls.append(*url);
        }
    };
    if (!keepUserData) {
        for (const auto& url : {plan.supportDir, plan.cachesDir, plan.preferences, plan.savedState}) {
            addIfItExists(url);
        }
    }
    addIfItExists(plan.appBundle);
    for (const QUrl& url : std::as_const(urls)) {
        // What cannot be moved stays, and the rest goes all the same.
        services_.workspace.moveToTrash(url);
    }
    onMainQueue(services_.quit);
}

} // namespace kelm
