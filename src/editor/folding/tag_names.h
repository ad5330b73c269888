// Numbers for the names of tags.
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringView>

namespace kelm {

/// Numbers names from 0 on. A copy costs little and numbers on for itself.
class TagNames
{
public:
    /// The number of a name, a new one if it has none.
    quint32 number(QStringView name);
    qsizetype count() const { return names_.size(); }
    void clear();

private:
    /// The keys are views into the names, whose units stay where they are in copies too.
    QHash<QStringView, quint32> numbers_;
    QList<QString> names_;
};

} // namespace kelm
