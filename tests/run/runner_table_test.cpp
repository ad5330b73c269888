#include "run/runner_table.h"
#include "support/test_program.h"

#include <QtTest>

namespace runner_table_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

/// Finds the programs that the test names in "/found", and keeps what it was asked for.
class FakeWhich final : public ProcessRunner
{
public:
    explicit FakeWhich(QStringList present) : present_(std::move(present)) {}

    ProcessResult run(const ProcessCommand& command) override
    {
        asked += command.arguments;
        if (!present_.contains(command.arguments.front())) {
            return {.exit = {1, false}};
        }
        return {.standardOutput = "/found/" + command.arguments.front().toUtf8()};
    }

    QStringList asked;

private:
    QStringList present_;
};

const QStringList rustArgs{u"--edition"_s, u"2021"_s, u"-o"_s, u"/tmp/rust_temp"_s, u"&&"_s, u"/tmp/rust_temp"_s};

} // namespace

class RunnerTableTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsOfTheTable_data();
    void rowsOfTheTable();
    void extensionsStandInTestOrder();
    void otherExtensionsHaveNoRunner_data();
    void otherExtensionsHaveNoRunner();
};

void RunnerTableTest::rowsOfTheTable_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("asked");
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QStringList>("args");
    const auto row = [](const char* name, const QString& extension, const QStringList& present,
                        const QStringList& asked, const QString& executable, const QStringList& args) {
        QTest::newRow(name) << extension << present << asked << executable << args;
    };
    row("python", u"py"_s, {u"python3"_s}, {u"python3"_s}, u"/found/python3"_s, {u"-u"_s});
    row("python by its fallback", u"py"_s, {}, {u"python3"_s}, u"/usr/bin/python3"_s, {u"-u"_s});
    row("node", u"js"_s, {u"node"_s}, {u"node"_s}, u"/found/node"_s, {});
    row("node by its fallback", u"js"_s, {}, {u"node"_s}, u"/usr/local/bin/node"_s, {});
    row("ts-node goes before npx", u"ts"_s, {u"ts-node"_s, u"npx"_s}, {u"ts-node"_s}, u"/found/ts-node"_s, {});
    row("npx with tsx", u"ts"_s, {u"npx"_s}, {u"ts-node"_s, u"npx"_s}, u"/found/npx"_s, {u"tsx"_s});
    row("npx by its fallback", u"ts"_s, {}, {u"ts-node"_s, u"npx"_s}, u"/usr/local/bin/npx"_s, {u"tsx"_s});
    row("sh is bash, unsearched", u"sh"_s, {u"bash"_s, u"sh"_s}, {}, u"/bin/bash"_s, {});
    row("bash, unsearched", u"bash"_s, {u"bash"_s}, {}, u"/bin/bash"_s, {});
    row("zsh, unsearched", u"zsh"_s, {u"zsh"_s}, {}, u"/bin/zsh"_s, {});
    row("ruby", u"rb"_s, {u"ruby"_s}, {u"ruby"_s}, u"/found/ruby"_s, {});
    row("ruby by its fallback", u"rb"_s, {}, {u"ruby"_s}, u"/usr/bin/ruby"_s, {});
    row("php", u"php"_s, {u"php"_s}, {u"php"_s}, u"/found/php"_s, {});
    row("php by its fallback", u"php"_s, {}, {u"php"_s}, u"/usr/local/bin/php"_s, {});
    row("swift, unsearched", u"swift"_s, {u"swift"_s}, {}, u"/usr/bin/swift"_s, {});
    row("go", u"go"_s, {u"go"_s}, {u"go"_s}, u"/found/go"_s, {u"run"_s});
    row("go by its fallback", u"go"_s, {}, {u"go"_s}, u"/usr/local/go/bin/go"_s, {u"run"_s});
    row("rust: plain arguments, no shell", u"rs"_s, {u"rustc"_s}, {u"rustc"_s}, u"/found/rustc"_s, rustArgs);
    row("rust has no fallback", u"rs"_s, {}, {u"rustc"_s}, {}, {});
}

void RunnerTableTest::rowsOfTheTable()
{
    QFETCH(QString, extension);
    QFETCH(QStringList, present);
    QFETCH(QStringList, asked);
    QFETCH(QString, executable);
    QFETCH(QStringList, args);
    FakeWhich which(present);
    const auto config = runnerFor(extension, ExecutableSearch({}, u"/which"_s, which));
    QCOMPARE(which.asked, asked);
    QCOMPARE(config.has_value(), !executable.isEmpty());
    if (config) {
        QCOMPARE(config->executable, executable);
        QCOMPARE(config->args, args);
    }
}

void RunnerTableTest::extensionsStandInTestOrder()
{
    QStringList extensions;
    for (const RunnerRow& row : runnerTable()) {
        extensions += row.extensions;
    }
    QCOMPARE(extensions, (QStringList{u"py"_s, u"js"_s, u"ts"_s, u"sh"_s, u"bash"_s, u"zsh"_s, u"rb"_s, u"php"_s,
                                      u"swift"_s, u"go"_s, u"rs"_s}));
}

void RunnerTableTest::otherExtensionsHaveNoRunner_data()
{
    QTest::addColumn<QString>("extension");
    for (const char* extension : {"", "txt", "c", "mjs", "pyw", "tsx", "PY", "python", ".py", "pl"}) {
        QTest::addRow("\"%s\"", extension) << QString::fromLatin1(extension);
    }
}

void RunnerTableTest::otherExtensionsHaveNoRunner()
{
    QFETCH(QString, extension);
    FakeWhich which({u"python3"_s});
    QVERIFY(!runnerFor(extension, ExecutableSearch({}, u"/which"_s, which)));
    QVERIFY(which.asked.isEmpty());
}

const kelm::test::Registered<RunnerTableTest> registered;

} // namespace runner_table_test

#include "runner_table_test.moc"
