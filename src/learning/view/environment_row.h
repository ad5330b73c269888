// One environment variable that a lesson needs.
#pragma once

#include "platform/events/scheduler.h"

#include <QWidget>

#include <functional>

namespace kelm {

class PlainButton;
class TextLabel;

/// Says whether a variable is set and, when it is not, offers the line that sets it and says where its value is to be
/// had.
class EnvRow final : public QWidget
{
    Q_OBJECT

public:
    /// `onCopy` belongs to the row's record; copying the line does not call it.
    EnvRow(const QString& key, bool isSet, bool isKo, std::function<void()> onCopy, Scheduler& scheduler,
           QWidget* parent = nullptr);

    const QString& key() const { return key_; }
    bool isKo() const { return isKo_; }
    const std::function<void()>& onCopy() const { return onCopy_; }

    bool isSet() const { return isSet_; }
    /// Whether the line was copied within the last 1.5 seconds.
    bool copied() const { return copied_; }
    /// Null in a row that says that the variable is set.
    PlainButton* copyButton() const { return copyButton_; }

private:
    /// Puts the line on the clipboard and says so for 1.5 seconds.
    void copyExport();
    void setCopied(bool copied);

    QString key_;
    bool isSet_;
    bool isKo_;
    std::function<void()> onCopy_;
    bool copied_ = false;
    Debounce copiedEnd_;
    PlainButton* copyButton_ = nullptr;
};

} // namespace kelm
