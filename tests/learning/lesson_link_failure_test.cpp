#include "learning/lesson_link_failure.h"
#include "support/test_program.h"

#include <QtTest>

namespace lesson_link_failure_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class LessonLinkFailureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachHasItsWordsAndItsLine_data();
    void eachHasItsWordsAndItsLine();
    void aLinkTooLongStandsInTheLogByItsBeginning_data();
    void aLinkTooLongStandsInTheLogByItsBeginning();
};

void LessonLinkFailureTest::eachHasItsWordsAndItsLine_data()
{
    using enum LessonLinkFailure;
    QTest::addColumn<LessonLinkFailure>("failure");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("line");
    const QString invalid = u"kelmpane:// invalid URL: kelmpane:what"_s;
    const QString ofCode = u"kelmpane:// failed to decode code"_s;
    QTest::newRow("no URL") << noURL << u"The lesson link is not a valid address"_s << invalid;
    QTest::newRow("another host") << anotherHost << u"The lesson link does not begin with kelmpane://open"_s << invalid;
    QTest::newRow("no code") << noCode << u"The lesson link holds no code"_s << invalid;
    QTest::newRow("no base64") << noBase64 << u"The lesson's code is not valid base64"_s << ofCode;
    QTest::newRow("no UTF-8") << noUtf8 << u"The lesson's code is not UTF-8 text"_s << ofCode;
    QTest::newRow("too long") << tooLong << u"The lesson link is longer than 4 MB"_s << invalid;
    QTest::newRow("too many keys") << tooManyKeys << u"The lesson link asks for more than 10,000 keys"_s << invalid;
}

void LessonLinkFailureTest::eachHasItsWordsAndItsLine()
{
    QFETCH(LessonLinkFailure, failure);
    QFETCH(QString, words);
    QFETCH(QString, line);
    QCOMPARE(wordsFor(failure), words);
    QCOMPARE(logLineFor(failure, u"kelmpane:what"_s), line);
}

void LessonLinkFailureTest::aLinkTooLongStandsInTheLogByItsBeginning_data()
{
    using enum LessonLinkFailure;
    QTest::addColumn<LessonLinkFailure>("failure");
    QTest::addColumn<qsizetype>("length");
    QTest::addColumn<bool>("isCut");
    QTest::newRow("too long, and all that is shown") << tooLong << qsizetype(4096) << false;
    QTest::newRow("too long, and one more") << tooLong << qsizetype(4097) << true;
    QTest::newRow("too many keys, and one more") << tooManyKeys << qsizetype(4097) << true;
    QTest::newRow("no URL, however long") << noURL << qsizetype(5000) << false;
    QTest::newRow("another host, however long") << anotherHost << qsizetype(5000) << false;
}

void LessonLinkFailureTest::aLinkTooLongStandsInTheLogByItsBeginning()
{
    QFETCH(LessonLinkFailure, failure);
    QFETCH(qsizetype, length);
    QFETCH(bool, isCut);
    const QString url = u"kelmpane:"_s + QString(length - 9, u'x');
    const QString shown = isCut ? url.first(4096) + u'…' : url;
    QCOMPARE(logLineFor(failure, url), u"kelmpane:// invalid URL: "_s + shown);
}

const kelm::test::Registered<LessonLinkFailureTest> registered;

} // namespace lesson_link_failure_test

#include "lesson_link_failure_test.moc"
