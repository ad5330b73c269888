// What goes over the network, where it was begun.
#pragma once

#include "git/service/git_transfers.h"

#include <QTimer>
#include <QWidget>

namespace kelm {

class ActivityLine;
class PlainButton;
class TextLabel;

/// A row such as "git fetch, 12 s" with a button that stops it, and a piece that runs along its upper edge. It is there
/// only while something of its kind is under way, and tells of the one that began first. Nobody knows how far that is.
class TransferSign final : public QWidget
{
    Q_OBJECT

public:
    /// Clones have a place of their own.
    enum class Kind { clones, others };

    /// The transfers outlive it.
    TransferSign(GitTransfers& transfers, Kind kind, QWidget* parent = nullptr);

    QString text() const;
    PlainButton* stopButton() const { return stop_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    /// Null when nothing of the kind is under way.
    const GitTransfer* transfer() const;
    void refresh();

    GitTransfers& transfers_;
    const Kind kind_;
    ActivityLine* activity_;
    TextLabel* label_;
    PlainButton* stop_;
    QTimer seconds_;
};

} // namespace kelm
