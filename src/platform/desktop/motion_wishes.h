// What the desktop asks of all that moves and blinks.
#pragma once

#include <QObject>

namespace kelm {

/// Whether a person wants things to move. The desktops' settings files are read at once; the settings service of the
/// desktop is asked, where there is one, answers later, and tells of each change. One of them that asks for none is
/// enough. Main thread only.
class MotionWishes final : public QObject
{
    Q_OBJECT

public:
    explicit MotionWishes(QObject* parent = nullptr);

    bool wantsAnimations() const { return doFilesAnimate_ && doesServiceAnimate_; }
    /// Whether a caret may blink.
    bool wantsBlinking() const { return doFilesBlink_ && doesServiceBlink_; }

Q_SIGNALS:
    void changed();

private:
    void readFiles();
    void askService();
    void take(const QString& key, const QVariant& value);

    bool doFilesAnimate_ = true;
    bool doFilesBlink_ = true;
    bool doesServiceAnimate_ = true;
    bool doesServiceBlink_ = true;
};

} // namespace kelm
