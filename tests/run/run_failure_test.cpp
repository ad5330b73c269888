#include "run/run_failure.h"
#include "run/runner_table.h"
#include "support/test_program.h"

#include <QFileInfo>
#include <QtTest>

namespace run_failure_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class RunFailureTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theReasonIsTold_data();
    void theReasonIsTold();
    void eachProgramOfTheTableHasAPackage();
};

void RunFailureTest::theReasonIsTold_data()
{
    using Reason = RunFailure::Reason;
    QTest::addColumn<RunFailure>("failure");
    QTest::addColumn<QString>("text");
    QTest::newRow("extension") << RunFailure{Reason::unknownExtension, u"a %1.sql"_s, u"sql"_s}
                               << u"a %1.sql cannot be run: nothing here runs .sql files."_s;
    QTest::newRow("no extension") << RunFailure{Reason::unknownExtension, u"Makefile"_s, {}}
                                  << u"Makefile cannot be run: its name has no extension that says how."_s;
    QTest::newRow("direction")
        << RunFailure{Reason::unknownExtension, u"a.\u202eyp"_s, u"\u202eyp"_s}
        << u"a.\u27e8U+202E\u27e9yp cannot be run: nothing here runs .\u27e8U+202E\u27e9yp files."_s;
    QTest::newRow("program") << RunFailure{Reason::missingProgram, u"a.js"_s, u"node"_s}
                             << u"a.js needs node, which was not found. It usually comes with the package nodejs."_s;
    QTest::newRow("unknown program") << RunFailure{Reason::missingProgram, u"a.x"_s, u"xrun"_s}
                                     << u"a.x needs xrun, which was not found."_s;
    QTest::newRow("system") << RunFailure{Reason::notStarted, u"a.py"_s, u"no %1 memory"_s}
                            << u"a.py could not be run: no %1 memory"_s;
}

void RunFailureTest::theReasonIsTold()
{
    QFETCH(RunFailure, failure);
    QFETCH(QString, text);
    QCOMPARE(failureText(failure), text);
}

void RunFailureTest::eachProgramOfTheTableHasAPackage()
{
    for (const RunnerRow& row : runnerTable()) {
        for (const RunnerRow::Searched& program : row.searched) {
            QVERIFY2(!packageOf(program.name).isEmpty(), qPrintable(program.name));
        }
        if (row.fallback) {
            const QString name = QFileInfo(row.fallback->executable).fileName();
            QVERIFY2(!packageOf(name).isEmpty(), qPrintable(name));
        }
    }
}

const kelm::test::Registered<RunFailureTest> registered(kelm::test::Toolkit::core);

} // namespace run_failure_test

#include "run_failure_test.moc"
