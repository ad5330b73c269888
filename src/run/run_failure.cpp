#include "run/run_failure.h"

#include "platform/text/shown_name.h"

#include <algorithm>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

struct PackageRow
{
    QString program;
    QString package;
};

/// Of each program that the table of runners names.
const std::vector<PackageRow>& packages()
{
    static const std::vector<PackageRow> rows{
        {u"python3"_s, u"python3"_s}, {u"node"_s, u"nodejs"_s},  {u"ts-node"_s, u"npm"_s}, {u"npx"_s, u"npm"_s},
        {u"bash"_s, u"bash"_s},       {u"zsh"_s, u"zsh"_s},      {u"ruby"_s, u"ruby"_s},   {u"php"_s, u"php-cli"_s},
        {u"swift"_s, u"swiftlang"_s}, {u"go"_s, u"golang-go"_s}, {u"rustc"_s, u"rustc"_s},
    };
    return rows;
}

} // namespace

QString packageOf(QStringView program)
{
    const auto& rows = packages();
    const auto row =
        std::find_if(rows.begin(), rows.end(), [program](const PackageRow& each) { return each.program == program; });
    return row != rows.end() ? row->package : QString();
}

QString failureText(const RunFailure& failure)
{
    const QString name = shownName(failure.name);
    switch (failure.reason) {
    case RunFailure::Reason::unknownExtension:
        return failure.detail.isEmpty()
                   ? name + u" cannot be run: its name has no extension that says how."_s
                   : name + u" cannot be run: nothing here runs .%1 files."_s.arg(shownName(failure.detail));
    case RunFailure::Reason::missingProgram: {
        const QString package = packageOf(failure.detail);
        const QString text = name + u" needs %1, which was not found."_s.arg(failure.detail);
        return package.isEmpty() ? text : text + u" It usually comes with the package %1."_s.arg(package);
    }
    case RunFailure::Reason::notStarted:
        break;
    }
    return name + u" could not be run: "_s + failure.detail;
}

} // namespace kelm
