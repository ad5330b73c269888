#include "app/command_line/command_line.h"
#include "support/test_program.h"

#include <QtTest>

namespace command_line_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using Operands = QList<CommandLine::Operand>;

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsUnderstood_data();
    void whatIsUnderstood();
    void whatIsNot_data();
    void whatIsNot();
};

void CommandLineTest::whatIsUnderstood_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<CommandLine>("expected");
    const auto row = [](const char* name, const QStringList& arguments, const CommandLine& expected) {
        QTest::newRow(name) << arguments << expected;
    };
    const Operands a{{u"a"_s}};
    const auto help = CommandLine::Task::help;
    row("nothing", {}, {});
    row("files", {u"a"_s, u"b:3"_s}, {.operands = {{u"a"_s}, {u"b:3"_s}}});
    row("an empty argument names nothing", {QString(), u"a"_s}, {.operands = a});
    row("standard input", {u"-"_s}, {.operands = {{u"-"_s, true}}});
    row("a file called so", {u"--"_s, u"-"_s}, {.operands = {{u"-"_s, false}}});
    row("options end", {u"--"_s, u"--help"_s, u"--"_s}, {.operands = {{u"--help"_s}, {u"--"_s}}});
    row("options before and behind", {u"--wait"_s, u"a"_s, u"--line"_s, u"12"_s},
        {.operands = a, .line = 12, .waits = true});
    row("what the desktop's menu asks for", {u"--new-file"_s, u"--open-folder"_s},
        {.makesNewFile = true, .choosesFolder = true});
    row("a value behind a sign", {u"--line=12"_s, u"a"_s}, {.operands = a, .line = 12});
    row("line 0 is the first", {u"--line"_s, u"0"_s}, {.line = 1});
    row("a line beyond all", {u"--line"_s, u"99999999999999999999999"_s}, {.line = 2147483647});
    row("the last line counts", {u"--line=1"_s, u"--line=2"_s}, {.line = 2});
    row("help before nonsense", {u"--help"_s, u"--nonsense"_s}, {.task = help});
    row("version", {u"a"_s, u"--version"_s}, {.task = CommandLine::Task::version, .operands = a});
    row("the toolkit's", {u"-platform"_s, u"offscreen"_s, u"--style=fusion"_s, u"-reverse"_s, u"a"_s},
        {.operands = a, .toolkitArguments = {u"-platform"_s, u"offscreen"_s, u"--style=fusion"_s, u"-reverse"_s}});
    row("a session that comes back", {u"-session"_s, u"1_2"_s}, {.toolkitArguments = {u"-session"_s, u"1_2"_s}});
}

void CommandLineTest::whatIsUnderstood()
{
    QFETCH(QStringList, arguments);
    QFETCH(CommandLine, expected);
    const auto parsed = parseCommandLine(arguments);
    QVERIFY2(std::holds_alternative<CommandLine>(parsed), "a usage error");
    QVERIFY(std::get<CommandLine>(parsed) == expected);
}

void CommandLineTest::whatIsNot_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown") << QStringList{u"--nonsense"_s} << u"unknown option --nonsense"_s;
    QTest::newRow("unknown before help") << QStringList{u"--nonsense"_s, u"--help"_s} << u"unknown option --nonsense"_s;
    QTest::newRow("one hyphen") << QStringList{u"-help"_s} << u"unknown option -help"_s;
    QTest::newRow("bytes that are no text") << QStringList{u"-\xdcff"_s} << u"unknown option -\xfffd"_s;
    QTest::newRow("a line without its number") << QStringList{u"a"_s, u"--line"_s} << u"--line needs a number"_s;
    QTest::newRow("a line that is none") << QStringList{u"--line"_s, u"ten"_s}
                                         << u"--line needs a number, and “ten” is none"_s;
    QTest::newRow("a line with a sign") << QStringList{u"--line=-3"_s} << u"--line needs a number, and “-3” is none"_s;
    QTest::newRow("an empty line") << QStringList{u"--line="_s} << u"--line needs a number, and “” is none"_s;
    QTest::newRow("a value for none") << QStringList{u"--wait=yes"_s} << u"--wait takes no value"_s;
}

void CommandLineTest::whatIsNot()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const auto parsed = parseCommandLine(arguments);
    QVERIFY(std::holds_alternative<UsageError>(parsed));
    QCOMPARE(std::get<UsageError>(parsed).message, message);
}

const kelm::test::Registered<CommandLineTest> registered;

} // namespace command_line_test

#include "command_line_test.moc"
