// What lesson links do.
#pragma once

#include "learning/lesson_link.h"
#include "platform/events/background_task.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <variant>

namespace kelm {

class AppState;

/// Opens the snippets of lesson links in new tabs, in the order in which the links come, each in a turn of its own, so
/// that the window goes on between them. A link that asks to run its code asks the state's `LinkRuns`. What a bad link
/// is bad for is logged and told by a notice. Main thread only.
class LessonLinks final : public QObject
{
    Q_OBJECT

public:
    /// The longest link that is taken, in UTF-16 units.
    static constexpr qsizetype longestLink = 4 * qsizetype(1024) * 1024;
    static constexpr qsizetype mostKeys = 10'000;
    /// As many links are taken until there is a pause; a page that sends thousands opens no thousands of tabs.
    static constexpr int mostAtOnce = 50;

    /// `activate` brings the application to the front. The state outlives the object.
    LessonLinks(AppState& appState, std::function<void()> activate, QObject* parent = nullptr);
    ~LessonLinks() override;

    /// Takes the text of a link. It opens after the event in hand.
    void handleKelmPaneURL(const QString& urlText);

private:
    using Decoded = std::variant<LessonLink, LessonLinkFailure>;

    void refuse(LessonLinkFailure failure, const QString& urlText);
    /// Whether one more is taken before the next pause.
    bool takeOneMore();
    void watchForPause();
    void openNext();
    void decodeAside(const QString& urlText);
    void open(const QString& urlText, const Decoded& decoded);

    AppState& appState_;
    const std::function<void()> activate_;
    QStringList waiting_;
    bool isOpening_ = false;
    int taken_ = 0;
    int leftOut_ = 0;
    bool cameSinceLook_ = false;
    BackgroundTask decoding_;
    quint64 notice_ = 0;
};

} // namespace kelm
