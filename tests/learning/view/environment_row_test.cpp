#include "learning/view/environment_row.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QtTest>

namespace environment_row_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    ManualScheduler scheduler;
    EnvRow row;

    int copies = 0;

    explicit Fixture(const QString& key, bool isSet = false, bool isKo = false)
        : row(
              key, isSet, isKo, [this] { ++copies; }, scheduler)
    {
        row.resize(260, row.sizeHint().height());
        row.show();
    }

    PlainButton* button() const { return row.findChild<PlainButton*>(); }
    QString where() const
    {
        const auto* label = row.findChild<WrappedLabel*>();
        return label != nullptr ? label->text() : QString();
    }
};

} // namespace

class EnvironmentRowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void aKeyThatIsSetHasAGreenCheck();
    void aKeyThatIsNotSetHasARedCross();
    void theSecondPartIsForKeysThatAreNotSet();
    void whereToGetAKey_data();
    void whereToGetAKey();
    void theButtonSaysThatTheLineWasCopied_data();
    void theButtonSaysThatTheLineWasCopied();
    void aRowHoldsItsRecord();
    void whatCannotBeSeenInANameIsShown();
    void copyingDoesNotCallBack();
};

void EnvironmentRowTest::aKeyThatIsSetHasAGreenCheck()
{
    Fixture fixture(u"SOME_KEY"_s, true);
    QVERIFY(icons::has(u"checkmark.circle.fill"_s));
    SymbolLabel check(u"checkmark.circle.fill"_s, 12, SystemColor::green);
    QVERIFY(looksLike(*fixture.row.findChild<SymbolLabel*>(), check));
    QCOMPARE(fixture.row.findChild<TextLabel*>()->text(), u"SOME_KEY"_s);
}

void EnvironmentRowTest::aKeyThatIsNotSetHasARedCross()
{
    Fixture fixture(u"SOME_KEY"_s);
    QVERIFY(icons::has(u"xmark.circle.fill"_s));
    SymbolLabel cross(u"xmark.circle.fill"_s, 12, SystemColor::red);
    QVERIFY(looksLike(*fixture.row.findChild<SymbolLabel*>(), cross));
    QCOMPARE(fixture.row.findChild<TextLabel*>()->text(), u"SOME_KEY"_s);
}

void EnvironmentRowTest::theSecondPartIsForKeysThatAreNotSet()
{
    const Fixture set(u"ANTHROPIC_API_KEY"_s, true);
    QVERIFY(set.row.isSet());
    QVERIFY(set.button() == nullptr);
    QCOMPARE(set.where(), QString());
    const Fixture unset(u"ANTHROPIC_API_KEY"_s);
    QVERIFY(!unset.row.isSet());
    QVERIFY(unset.button() != nullptr);
    QCOMPARE(unset.button()->look().textSize, 10);
    QCOMPARE(unset.button()->look().tint, Tint::accent());
}

void EnvironmentRowTest::whereToGetAKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("korean");
    const QString vendor = u"your vendor console"_s;
    const QString vendorInKorean = u"벤더 콘솔"_s;
    const QString anthropic = QStringLiteral(KELM_ANTHROPIC_KEY_CONSOLE);
    const QString openai = QStringLiteral(KELM_OPENAI_KEY_CONSOLE);
    QVERIFY(anthropic.contains(u'.') && openai.contains(u'.') && anthropic != openai);
    QTest::newRow("Anthropic") << u"ANTHROPIC_API_KEY"_s << anthropic << anthropic;
    QTest::newRow("OpenAI") << u"OPENAI_API_KEY"_s << openai << openai;
    QTest::newRow("another") << u"OTHER_API_KEY"_s << vendor << vendorInKorean;
    QTest::newRow("another case") << u"openai_api_key"_s << vendor << vendorInKorean;
    QTest::newRow("a longer name") << u"ANTHROPIC_API_KEY_2"_s << vendor << vendorInKorean;
    QTest::newRow("a blank before it") << u" OPENAI_API_KEY"_s << vendor << vendorInKorean;
}

void EnvironmentRowTest::whereToGetAKey()
{
    QFETCH(QString, key);
    QFETCH(QString, english);
    QFETCH(QString, korean);
    QCOMPARE(Fixture(key).where(), u"Get a key: "_s + english);
    QCOMPARE(Fixture(key, false, true).where(), u"키 받기: "_s + korean);
}

void EnvironmentRowTest::theButtonSaysThatTheLineWasCopied_data()
{
    QTest::addColumn<bool>("isKo");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("English") << false << u"Copy export"_s << u"Copied!"_s;
    QTest::newRow("Korean") << true << u"export 복사"_s << u"복사됨!"_s;
}

void EnvironmentRowTest::theButtonSaysThatTheLineWasCopied()
{
    QFETCH(bool, isKo);
    QFETCH(QString, before);
    QFETCH(QString, after);
    Fixture fixture(u"SOME_KEY"_s, false, isKo);
    QCOMPARE(fixture.button()->text(), before);
    QVERIFY(!fixture.row.copied());
    QTest::mouseClick(fixture.button(), Qt::LeftButton);
    QCOMPARE(fixture.button()->text(), after);
    QVERIFY(fixture.row.copied());
    fixture.scheduler.advance(std::chrono::milliseconds(1500));
    QCOMPARE(fixture.button()->text(), before);
    QVERIFY(!fixture.row.copied());
}

void EnvironmentRowTest::aRowHoldsItsRecord()
{
    Fixture fixture(u"SOME_KEY"_s, true, true);
    QCOMPARE(fixture.row.key(), u"SOME_KEY"_s);
    QVERIFY(fixture.row.isSet() && fixture.row.isKo() && !fixture.row.copied());
    QVERIFY(fixture.row.onCopy());
    fixture.row.onCopy()();
    QCOMPARE(fixture.copies, 1);
}

void EnvironmentRowTest::whatCannotBeSeenInANameIsShown()
{
    const Fixture fixture(u"A\u202eB\u0001"_s);
    QCOMPARE(fixture.row.findChild<TextLabel*>()->text(), u"A\u27e8U+202E\u27e9B\u27e8U+0001\u27e9"_s);
}

void EnvironmentRowTest::copyingDoesNotCallBack()
{
    Fixture fixture(u"SOME_KEY"_s);
    QGuiApplication::clipboard()->setText(u"before"_s);
    QTest::mouseClick(fixture.button(), Qt::LeftButton);
    QVERIFY(fixture.row.copied());
    QCOMPARE(QGuiApplication::clipboard()->text(), u"export SOME_KEY=..."_s);
    fixture.scheduler.advance(std::chrono::milliseconds(1500));
    QCOMPARE(fixture.copies, 0);
}

const kelm::test::Registered<EnvironmentRowTest> registered(kelm::test::Toolkit::widgets);

} // namespace environment_row_test

#include "environment_row_test.moc"
