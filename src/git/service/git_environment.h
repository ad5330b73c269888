// The environment variables that git's children get beside the application's own.
#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>

namespace kelm {

using EnvironmentVariables = QMap<QString, QString>;
/// Keys and values of git's configuration, in order.
using GitSettings = QList<QPair<QString, QString>>;

/// Whether git only reads with these arguments. Nobody asked for such a command by itself: it fills a list or a sheet,
/// so that nothing that a repository brings along may run for it, whereas what a person asks for runs hooks and helpers
/// as git does.
bool onlyReads(const QStringList& arguments);

/// What a repository's own settings could have git run or do, put into settings that win over them.
struct ForeignPrograms
{
    /// Settings that take the place of the repository's.
    GitSettings settings = {};
    /// Whether missing objects may be fetched without a program that the repository chose.
    bool mayFetch = true;

    bool operator==(const ForeignPrograms&) const = default;
};

/// The environment of git with `arguments`, made from that of the application.
///
/// For every command: names behind `--` are names and no patterns. There is no terminal to ask at, unless a program to
/// ask is named; ssh, which would go to the terminal by itself, is told to use its own such program.
///
/// For a command that only reads also: git takes no lock that it can do without, and starts neither hooks nor a foreign
/// program for watching files, comparing or signatures; and it prints names and texts in one form, whatever the
/// settings say.
EnvironmentVariables gitEnvironment(const QStringList& arguments, EnvironmentVariables variables);

/// Adds what stands against a repository's own programs to the environment of a command that only reads.
void replaceForeignPrograms(EnvironmentVariables& variables, const ForeignPrograms& foreign);

/// The `diff` of the same arguments as a program for comparing, for one file: git has no setting for none, and dies of
/// an empty one. Empty for any other command.
QString plainDiffCommand(const QStringList& arguments);

} // namespace kelm
