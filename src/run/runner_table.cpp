#include "run/runner_table.h"

#include <QFileInfo>

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Null for an extension that the table lacks.
const RunnerRow* rowOf(QStringView extension)
{
    const auto& table = runnerTable();
    const auto row = std::find_if(table.begin(), table.end(),
                                  [extension](const RunnerRow& each) { return each.extensions.contains(extension); });
    return row != table.end() ? &*row : nullptr;
}

} // namespace

const std::vector<RunnerRow>& runnerTable()
{
    static const std::vector<RunnerRow> table{
        {{u"py"_s}, {{u"python3"_s, {u"-u"_s}}}, RunnerConfig{u"/usr/bin/python3"_s, {u"-u"_s}}},
        {{u"js"_s}, {{u"node"_s, {}}}, RunnerConfig{u"/usr/local/bin/node"_s, {}}},
        {{u"ts"_s}, {{u"ts-node"_s, {}}, {u"npx"_s, {u"tsx"_s}}}, RunnerConfig{u"/usr/local/bin/npx"_s, {u"tsx"_s}}},
        {{u"sh"_s, u"bash"_s}, {}, RunnerConfig{u"/bin/bash"_s, {}}},
        {{u"zsh"_s}, {}, RunnerConfig{u"/bin/zsh"_s, {}}},
        {{u"rb"_s}, {{u"ruby"_s, {}}}, RunnerConfig{u"/usr/bin/ruby"_s, {}}},
        {{u"php"_s}, {{u"php"_s, {}}}, RunnerConfig{u"/usr/local/bin/php"_s, {}}},
        {{u"swift"_s}, {}, RunnerConfig{u"/usr/bin/swift"_s, {}}},
        {{u"go"_s}, {{u"go"_s, {u"run"_s}}}, RunnerConfig{u"/usr/local/go/bin/go"_s, {u"run"_s}}},
        // All of this reaches the compiler as it stands: no shell reads the "&&".
        {{u"rs"_s},
         {{u"rustc"_s, {u"--edition"_s, u"2021"_s, u"-o"_s, u"/tmp/rust_temp"_s, u"&&"_s, u"/tmp/rust_temp"_s}}},
         std::nullopt},
    };
    return table;
}

std::optional<RunnerConfig> runnerFor(QStringView extension, const ExecutableSearch& search)
{
    const RunnerRow* const row = rowOf(extension);
    if (row == nullptr) {
        return std::nullopt;
    }
    for (const RunnerRow::Searched& program : row->searched) {
        if (const auto path = search.find(program.name)) {
            return RunnerConfig{*path, program.args};
        }
    }
    return row->fallback;
}

QString programName(QStringView extension, const std::optional<RunnerConfig>& runner)
{
    if (runner) {
        return QFileInfo(runner->executable).fileName();
    }
    const RunnerRow* const row = rowOf(extension);
    return row != nullptr && !row->searched.empty() ? row->searched.front().name : QString();
}

} // namespace kelm
