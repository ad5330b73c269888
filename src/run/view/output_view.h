// The output page of the bottom panel.
#pragma once

#include "platform/events/notification_center.h"
#include "run/view/front_trimmer.h"

#include <QLatin1String>
#include <QVariantAnimation>
#include <QWidget>

namespace kelm {

class EndFollower;
class TextView;
class ThemeManager;

/// Shows what runs post as `codeOutput`, from the moment it is made, and begins anew at `clearOutput`. The text can be
/// selected and copied; control characters are shown by signs, and copied as they came. The last `mostKeptUnits` of it
/// are kept, and the first line says how much was let go. Each text that comes scrolls the page to its end in 0.1
/// seconds, unless the person has scrolled back. Main thread only.
class OutputView final : public QWidget
{
    Q_OBJECT

public:
    /// The name of the invisible element at the end of the text, which is scrolled to.
    static constexpr QLatin1String bottomAnchor{"outputBottom"};

    OutputView(NotificationCenter& notifications, ThemeManager& themeManager, QWidget* parent = nullptr);
    ~OutputView() override;

    /// What was posted since the page was cleared; empty while the page reads "No output".
    QString output() const;

    TextView& textView() { return *textView_; }
    /// What scrolls the page to its end; for tests.
    const QVariantAnimation& scrollAnimation() const { return scrolling_; }

private:
    void append(const QString& text);
    void clear();
    void showPlaceholder();
    void refreshColors();
    void scrollToBottomAnchor();
    void placeBottomAnchor();

    ThemeManager& themeManager_;
    TextView* textView_;
    QWidget* anchor_;
    EndFollower* follower_;
    FrontTrimmer trimmer_;
    QVariantAnimation scrolling_;
    qreal scrollStart_ = 0;
    bool isEmpty_ = true;
    bool isScrollQueued_ = false;
};

} // namespace kelm
