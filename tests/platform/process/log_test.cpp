#include "platform/process/log.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QRegularExpression>
#include <QtTest>

namespace log_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class LogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLogLineGoesToStandardErrorWithATimeStamp();
    void aPrintedLineGoesToStandardOutputAtOnce();
};

void LogTest::aLogLineGoesToStandardErrorWithATimeStamp()
{
    QByteArray output;
    QByteArray error;
    QCOMPARE(runRole(u"write"_s, {u"📂 한글 %1 %s"_s}, &output, &error), 0);
    QCOMPARE(output, QByteArray());
    const QRegularExpression line(u"^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} 📂 한글 %1 %s\n$"_s);
    QVERIFY2(line.match(QString::fromUtf8(error)).hasMatch(), error.constData());
}

void LogTest::aPrintedLineGoesToStandardOutputAtOnce()
{
    QProcess child;
    startRole(child, u"printAndWait"_s, {u"Error saving: 디스크"_s});
    QVERIFY(child.waitForReadyRead());
    QCOMPARE(child.readAllStandardOutput(), QByteArray("Error saving: 디스크\n"));
    QCOMPARE(child.state(), QProcess::Running);
    child.closeWriteChannel();
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.readAllStandardError(), QByteArray());
}

namespace {

int writeLine(const QStringList& arguments)
{
    Log::system().write(arguments[0]);
    return 0;
}

int printAndWait(const QStringList& arguments)
{
    Log::system().print(arguments[0]);
    return std::getchar() == EOF ? 0 : 1;
}

const kelm::test::Registered<LogTest> registered(kelm::test::Toolkit::core,
                                                 {{u"write"_s, writeLine}, {u"printAndWait"_s, printAndWait}});

} // namespace

} // namespace log_test

#include "log_test.moc"
