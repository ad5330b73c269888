#include "app/state/large_files.h"

#include "app/state/file_failures.h"
#include "platform/events/main_queue.h"
#include "platform/files/file_identity.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QPointer>

#include <atomic>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Tells a notice of the whole percents that a reading has come to; from any thread.
class ProgressTeller
{
public:
    ProgressTeller(Notices& notices, Notices::Id notice) : notices_(&notices), notice_(notice) {}

    void tell(double share)
    {
        constexpr int whole = 100;
        const int percent = int(share * whole);
        int told = told_;
        while (percent > told) {
            if (told_.compare_exchange_weak(told, percent)) {
                onMainQueue([notices = notices_, notice = notice_, percent] {
                    if (notices) {
                        notices->setProgress(notice, double(percent) / whole);
                    }
                });
                return;
            }
        }
    }

private:
    /// Looked at on the main thread alone.
    const QPointer<Notices> notices_;
    const Notices::Id notice_;
    std::atomic<int> told_ = 0;
};

} // namespace

LargeFiles::LargeFiles(Notices& notices, Deliver deliver) : notices_(notices), deliver_(std::move(deliver)) {}

LargeFiles::~LargeFiles()
{
    if (reading_) {
        notices_.remove(notice_);
    }
}

bool LargeFiles::isLarge(const QUrl& url) const
{
    const std::optional<FileIdentity> file = identityOf(nativePath(filePath(url)));
    return url.isLocalFile() && file && file->size >= leastSize_;
}

void LargeFiles::read(const QUrl& url)
{
    waiting_.append(url);
    readNext();
}

void LargeFiles::readNext()
{
    if (reading_ || waiting_.isEmpty()) {
        return;
    }
    const QUrl url = waiting_.takeFirst();
    reading_ = url;
    notice_ = notices_.add({u"Opening %1…"_s.arg(shownName(url)), 0.0, [this] { stop(); }});
    const auto teller = std::make_shared<ProgressTeller>(notices_, notice_);
    task_.start([this, url, teller](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        Result result = readTextFile(url, [&](double share) {
            teller->tell(share);
            return !stop;
        });
        return [this, result = std::move(result)] { finish(result); };
    });
}

void LargeFiles::stop()
{
    task_.stop();
    finish(std::nullopt);
}

void LargeFiles::finish(std::optional<Result> result)
{
    const QUrl url = *std::exchange(reading_, std::nullopt);
    const Notices::Id notice = std::exchange(notice_, 0);
    // The next one begins first, so that the notice does not go and come again.
    readNext();
    notices_.remove(notice);
    deliver_(url, std::move(result));
    if (ended_) {
        ended_(url);
    }
}

} // namespace kelm
