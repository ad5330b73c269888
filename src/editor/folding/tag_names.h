// Numbers for the names of tags.
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringView>

#include <array>

namespace kelm {

/// Numbers names from 0 on. A copy costs little and numbers on for itself.
class TagNames
{
public:
    /// The number of a name, a new one if it has none.
    quint32 number(QStringView name);
    const QString& name(quint32 number) const { return names_.at(number); }
    qsizetype count() const { return names_.size(); }
    void clear();

private:
    /// The keys are views into the names, whose units stay where they are in copies too.
    QHash<QStringView, quint32> numbers_;
    QList<QString> names_;
};

/// Asks for the numbers of names that come again and again. The names outlive it and are not cleared meanwhile.
class TagNameLookup
{
public:
    explicit TagNameLookup(TagNames& names) : names_(names) {}

    quint32 number(QStringView name);

private:
    struct Known
    {
        QString name;
        quint32 number = 0;
    };

    TagNames& names_;
    /// By a look at a few units of a name, the last name with these.
    std::array<Known, 256> known_;
};

} // namespace kelm
