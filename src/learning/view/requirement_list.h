// The environment variables that a lesson needs.
#pragma once

#include "platform/events/scheduler.h"

#include <QHash>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <map>
#include <vector>

class QScrollArea;

namespace kelm {

class EnvRow;

/// One row for each variable, in their order. Rows are made where they are seen, and a little beyond: a lesson may name
/// thousands, and the list costs no more than the rows on the screen.
class RequirementList final : public QWidget
{
    Q_OBJECT

public:
    /// The list scrolls in `area`, which outlives it as the scheduler does. Each row gets `onCopy`.
    RequirementList(QScrollArea& area, std::function<void()> onCopy, Scheduler& scheduler, QWidget* parent = nullptr);

    /// Shows other variables, and which of them are set. A row that tells the same as before stays, with what it says
    /// of its copy.
    void show(const QStringList& keys, const QHash<QString, bool>& areSet, bool isKo);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    bool isSet(const QString& key) const { return areSet_.value(key, false); }
    int heightOf(const QString& key, bool isSet);
    void placeRows();
    /// Makes the rows that have come into sight, and lets the others go.
    void follow();
    EnvRow* makeRow(qsizetype index);
    void orderKeyboard();

    QScrollArea& area_;
    std::function<void()> onCopy_;
    Scheduler& scheduler_;
    QStringList keys_;
    QHash<QString, bool> areSet_;
    bool isKo_ = false;
    /// Where each row begins, and where the last one ends.
    std::vector<int> tops_{0};
    QHash<QString, int> heights_;
    std::map<qsizetype, EnvRow*> rows_;
};

} // namespace kelm
