#include "git/service/git_environment.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

struct Setting
{
    QStringView key;
    QStringView value;
};

/// The settings of each command that only reads.
constexpr std::array readingSettings{
    Setting{u"core.fsmonitor", u"false"},
    Setting{u"core.hooksPath", u"/dev/null"},
    // Signatures are neither asked for by a setting nor by a format.
    Setting{u"log.showSignature", u"false"},
    Setting{u"gpg.program", u"/bin/false"},
    Setting{u"gpg.openpgp.program", u"/bin/false"},
    Setting{u"gpg.x509.program", u"/bin/false"},
    Setting{u"gpg.ssh.program", u"/bin/false"},
    // Git would start itself in a submodule, without the settings that stand here.
    Setting{u"diff.submodule", u"short"},
    // One form of what is read.
    Setting{u"core.quotePath", u"true"},
    Setting{u"i18n.logOutputEncoding", u"UTF-8"},
    Setting{u"color.ui", u"false"},
    Setting{u"color.diff", u"false"},
    Setting{u"diff.noprefix", u"false"},
    Setting{u"diff.mnemonicPrefix", u"false"},
    Setting{u"diff.srcPrefix", u"a/"},
    Setting{u"diff.dstPrefix", u"b/"},
    Setting{u"format.pretty", u"medium"},
    Setting{u"log.showRoot", u"true"},
};

constexpr QStringView settingCount = u"GIT_CONFIG_COUNT";
/// Where `git -c` hands its settings on, to its editor too.
constexpr QStringView commandLineSettings = u"GIT_CONFIG_PARAMETERS";

/// As git reads it there.
QString quoted(const QString& text)
{
    return u'\'' + QString(text).replace(u'\'', u"'\\''"_s) + u'\'';
}

/// Appends to the settings that the environment has: of two for one key the last holds, and those of a command line
/// come behind all others.
void append(EnvironmentVariables& variables, const GitSettings& settings)
{
    if (QString given = variables.value(commandLineSettings.toString()); !given.isEmpty()) {
        for (const auto& [key, value] : settings) {
            given += u' ' + quoted(key) + u'=' + quoted(value);
        }
        variables.insert(commandLineSettings.toString(), given);
        return;
    }
    int count = variables.value(settingCount.toString()).toInt();
    for (const auto& [key, value] : settings) {
        variables.insert(u"GIT_CONFIG_KEY_%1"_s.arg(count), key);
        variables.insert(u"GIT_CONFIG_VALUE_%1"_s.arg(count), value);
        ++count;
    }
    variables.insert(settingCount.toString(), QString::number(count));
}

void takeNamesAsTheyAre(EnvironmentVariables& variables)
{
    // Git refuses these beside the other.
    for (const QString& pattern : {u"GIT_GLOB_PATHSPECS"_s, u"GIT_NOGLOB_PATHSPECS"_s, u"GIT_ICASE_PATHSPECS"_s}) {
        variables.remove(pattern);
    }
    variables.insert(u"GIT_LITERAL_PATHSPECS"_s, u"1"_s);
}

void askNowhere(EnvironmentVariables& variables)
{
    if (!variables.contains(u"GIT_ASKPASS"_s) && !variables.contains(u"SSH_ASKPASS"_s)) {
        variables.insert(u"GIT_TERMINAL_PROMPT"_s, u"0"_s);
    }
    if (!variables.contains(u"SSH_ASKPASS_REQUIRE"_s)) {
        variables.insert(u"SSH_ASKPASS_REQUIRE"_s, u"force"_s);
    }
}

void runNothingForeign(EnvironmentVariables& variables)
{
    variables.insert(u"GIT_OPTIONAL_LOCKS"_s, u"0"_s);
    variables.remove(u"GIT_EXTERNAL_DIFF"_s);
    // Missing objects come over the network or not at all: other ways run what stands in another folder.
    if (!variables.contains(u"GIT_ALLOW_PROTOCOL"_s)) {
        variables.insert(u"GIT_ALLOW_PROTOCOL"_s, u"http:https:ssh:git"_s);
    }
    GitSettings settings;
    for (const auto& [key, value] : readingSettings) {
        settings.append({key.toString(), value.toString()});
    }
    append(variables, settings);
}

} // namespace

bool onlyReads(const QStringList& arguments)
{
    static const QStringList readers{u"blame"_s,    u"cat-file"_s, u"diff"_s,     u"for-each-ref"_s, u"log"_s,
                                     u"ls-files"_s, u"show"_s,     u"rev-list"_s, u"rev-parse"_s,    u"status"_s};
    const QString first = arguments.value(0);
    const QString second = arguments.value(1);
    return readers.contains(first) || (first == u"remote" && second == u"-v") ||
           (first == u"stash" && (second == u"list" || second == u"show")) ||
           (first == u"config" && arguments.size() == 2);
}

EnvironmentVariables gitEnvironment(const QStringList& arguments, EnvironmentVariables variables)
{
    // A hook has patterns of its own, and `stash push -u` uses one: only commands with names have them taken literally.
    if (arguments.contains(u"--"_s)) {
        takeNamesAsTheyAre(variables);
    }
    askNowhere(variables);
    if (onlyReads(arguments)) {
        runNothingForeign(variables);
    }
    return variables;
}

void replaceForeignPrograms(EnvironmentVariables& variables, const ForeignPrograms& foreign)
{
    if (!foreign.mayFetch) {
        variables.insert(u"GIT_NO_LAZY_FETCH"_s, u"1"_s);
        // For versions that do not know the other: no way of transport is allowed.
        variables.insert(u"GIT_ALLOW_PROTOCOL"_s, u"none"_s);
    }
    if (!foreign.settings.isEmpty()) {
        append(variables, foreign.settings);
    }
}

QString plainDiffCommand(const QStringList& arguments)
{
    if (arguments.value(0) != u"diff") {
        return {};
    }
    const QStringList words = arguments.first(std::max(arguments.indexOf(u"--"_s), qsizetype(1)));
    // The first of what git gives is the name, the eighth that of a renamed file.
    return u"plain() { git %1 --no-ext-diff --no-textconv -- \"$1\" ${8+\"$8\"}; }; plain"_s.arg(words.join(u' '));
}

} // namespace kelm
