#include "run/run_record.h"
#include "support/test_program.h"

#include <QtTest>

#include <csignal>

namespace run_record_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

class RunRecordTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void durationsAreShort_data();
    void durationsAreShort();
    void aRunThatGoesOnTellsForHowLong();
    void theEndTellsHowAndAfterWhatTime_data();
    void theEndTellsHowAndAfterWhatTime();
};

void RunRecordTest::durationsAreShort_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << u"0 s"_s;
    QTest::newRow("seconds") << 59 << u"59 s"_s;
    QTest::newRow("a minute") << 60 << u"1 min 0 s"_s;
    QTest::newRow("minutes") << 3599 << u"59 min 59 s"_s;
    QTest::newRow("an hour") << 3600 << u"1 h 0 min"_s;
    QTest::newRow("days") << 100 * 3600 + 61 << u"100 h 1 min"_s;
}

void RunRecordTest::durationsAreShort()
{
    QFETCH(int, seconds);
    QFETCH(QString, text);
    QCOMPARE(durationText(std::chrono::seconds(seconds)), text);
}

void RunRecordTest::aRunThatGoesOnTellsForHowLong()
{
    QCOMPARE(runningText({.name = u"100%1 한글.py"_s}, 12s), u"Running 100%1 한글.py … 12 s"_s);
    QCOMPARE(runningText({.name = u"a\u202eyp.txt"_s}, 1s), u"Running a\u27e8U+202E\u27e9yp.txt … 1 s"_s);
}

void RunRecordTest::theEndTellsHowAndAfterWhatTime_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("bySignal");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("well") << 0 << false << 1234 << u"%1.py ended with 0 after 1.2 s"_s;
    QTest::newRow("failed") << 3 << false << 100 << u"%1.py ended with 3 after 0.1 s"_s;
    QTest::newRow("at once") << 255 << false << 34 << u"%1.py ended with 255 after 0.03 s"_s;
    QTest::newRow("terminated") << SIGTERM << true << 61999 << u"%1.py was ended by SIGTERM after 1 min 1 s"_s;
    QTest::newRow("killed") << SIGKILL << true << 59949 << u"%1.py was ended by SIGKILL after 59.9 s"_s;
    QTest::newRow("no name") << 40 << true << 3600000 << u"%1.py was ended by signal 40 after 1 h 0 min"_s;
}

void RunRecordTest::theEndTellsHowAndAfterWhatTime()
{
    QFETCH(int, status);
    QFETCH(bool, bySignal);
    QFETCH(int, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(endedText({.name = u"%1.py"_s,
                        .exit = ProcessExit{status, bySignal},
                        .lasted = std::chrono::milliseconds(milliseconds)}),
             text);
}

const kelm::test::Registered<RunRecordTest> registered(kelm::test::Toolkit::core);

} // namespace run_record_test

#include "run_record_test.moc"
