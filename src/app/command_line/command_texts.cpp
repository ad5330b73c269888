#include "app/command_line/command_texts.h"

#include "app/command_line/command_options.h"

#include <algorithm>

namespace kelm {

namespace {

constexpr auto operands = "[OPTION …] [FILE[:LINE[:COLUMN]] | FOLDER | LINK | - …]";

/// "--line N".
QByteArray withValue(const CommandOption& option, const char* between = " ")
{
    const QByteArray name(option.name.data(), option.name.size());
    return option.value.isEmpty() ? name : name + between + QByteArray(option.value.data(), option.value.size());
}

QByteArray bytesOf(QLatin1String text)
{
    return {text.data(), text.size()};
}

/// Text for the manual page: hyphens are those of a command line.
QByteArray forManual(QByteArray text)
{
    return text.replace('\\', "\\e").replace('-', "\\-");
}

/// A sentence a line, as the page has it.
QByteArray sentences(QLatin1String text)
{
    return forManual(bytesOf(text)).replace(". ", ".\n") + '\n';
}

} // namespace

QByteArray helpText()
{
    QByteArray text = "Usage: kelmwright " + QByteArray(operands) +
                      "\n\n"
                      "Opens files, folders and lesson links in the editor's one window. A FILE of\n"
                      "which the name with its colons is there is that file; else LINE and COLUMN,\n"
                      "from 1, tell where to go in it. - opens standard input in a tab. Behind -- there\n"
                      "are no options.\n\n";
    qsizetype width = 0;
    for (const CommandOption& option : commandOptions) {
        width = std::max(width, withValue(option).size());
    }
    for (const CommandOption& option : commandOptions) {
        text += "  " + withValue(option).leftJustified(width + 2) + bytesOf(option.summary) + '\n';
    }
    return text + "\nThe manual page, kelmwright(1), tells the rest.\n";
}

QByteArray versionText(const QByteArray& version)
{
    return "KelmWright " + version + '\n';
}

QByteArray manualOptions()
{
    QByteArray text = ".SH OPTIONS\n";
    for (const CommandOption& option : commandOptions) {
        text += ".TP\n";
        text += option.value.isEmpty()
                    ? ".B " + forManual(bytesOf(option.name)) + '\n'
                    : ".BI " + forManual(bytesOf(option.name)) + " \" " + bytesOf(option.value) + "\"\n";
        text += sentences(option.description);
    }
    return text + ".TP\n.B \\-\\-\nWhat follows is no option, whatever it begins with.\n";
}

QByteArray manualExitStatuses()
{
    QByteArray text = ".SH \"EXIT STATUS\"\n";
    for (const ExitStatusRow& row : exitStatuses) {
        text += ".TP\n.B " + QByteArray::number(static_cast<int>(row.status)) + '\n' + sentences(row.description);
    }
    return text + ".PP\nAn editor that a signal has ended, once its texts were kept, ends by that signal.\n";
}

QByteArray bashCompletion()
{
    QByteArray names;
    QByteArray withValues;
    for (const CommandOption& option : commandOptions) {
        names += ' ' + bytesOf(option.name);
        if (!option.value.isEmpty()) {
            withValues += (withValues.isEmpty() ? "" : " | ") + bytesOf(option.name);
        }
    }
    return "# Completes the command line of kelmwright in bash.\n"
           "_kelmwright() {\n"
           "  local current=${COMP_WORDS[COMP_CWORD]} word\n"
           "  COMPREPLY=()\n"
           "  case ${COMP_WORDS[COMP_CWORD - 1]} in\n"
           "  " +
           withValues +
           ") return ;;\n"
           "  esac\n"
           "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD - 1}\"; do\n"
           "    if [[ $word == -- ]]; then\n"
           "      return\n"
           "    fi\n"
           "  done\n"
           "  if [[ $current == -* ]]; then\n"
           "    mapfile -t COMPREPLY < <(compgen -W '" +
           names.mid(1) +
           "' -- \"$current\")\n"
           "  fi\n"
           "}\n"
           "complete -o default -F _kelmwright kelmwright\n";
}

QByteArray zshCompletion()
{
    QByteArray text = "#compdef kelmwright\n"
                      "# Completes the command line of kelmwright in zsh.\n"
                      "_arguments -S \\\n";
    for (const CommandOption& option : commandOptions) {
        text += "  '" + bytesOf(option.name) + (option.value.isEmpty() ? "" : "=") + '[' + bytesOf(option.summary) +
                ']' + (option.value.isEmpty() ? "" : ":" + bytesOf(option.value) + ": ") + "' \\\n";
    }
    return text + "  '*:file or folder:_files'\n";
}

QByteArray fishCompletion()
{
    QByteArray text = "# Completes the command line of kelmwright in fish.\n";
    for (const CommandOption& option : commandOptions) {
        text += "complete -c kelmwright -l " + bytesOf(option.name).mid(2) + (option.value.isEmpty() ? "" : " -x") +
                " -d '" + bytesOf(option.summary) + "'\n";
    }
    return text;
}

} // namespace kelm
