#include "app/state/document_rewriter.h"
#include "app/state/notices.h"
#include "app/state/rewrite_document.h"
#include "editor/transforms/text_transformer.h"
#include "support/app_state_fixture.h"
#include "support/blocked_workers.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <optional>

namespace document_rewriter_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QString longText(char16_t letter = u'a')
{
    return QString(DocumentRewriter::longestAtOnce + 1, QChar(letter));
}

} // namespace

class DocumentRewriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { fixture_.emplace(); }
    void aShortTextIsDoneAtOnce();
    void aLongTextIsMadeOnAnotherThread();
    void theNoticeHoldsTheInputUntilTheTextIsThere();
    void theSameTextIsNoChange();
    void stoppingChangesNothing();
    void afterStoppingAnotherCanBegin();
    void oneIsMadeAtATime();
    void aClosedDocumentIsLeftAlone();
    void aDocumentOfAnotherTextIsLeftAlone();
    void aStateThatEndsMeanwhileIsNoHarm();
    void linesAreSorted();
    void withoutADocumentNothingHappens();

private:
    AppState& state() { return fixture_->state; }
    void open(const QString& text) { fixture_->openTabs({text}); }
    QString text() { return state().currentDocument()->content(); }
    void makeUpper()
    {
        rewriteCurrentDocument(state(), u"Changing…"_s, [](const QString& before) { return before.toUpper(); });
    }
    void untilDone()
    {
        QSignalSpy changed(&state().notices(), &Notices::currentChanged);
        QVERIFY(state().notices().current() == nullptr || changed.wait(30'000));
        QVERIFY(state().notices().current() == nullptr);
    }

    std::optional<AppStateFixture> fixture_;
};

void DocumentRewriterTest::aShortTextIsDoneAtOnce()
{
    open(longText().chopped(1));
    QSignalSpy notices(&state().notices(), &Notices::currentChanged);
    makeUpper();
    QVERIFY(text() == longText(u'A').chopped(1));
    QVERIFY(notices.isEmpty());
    QVERIFY(state().currentDocument()->isModified());
}

void DocumentRewriterTest::aLongTextIsMadeOnAnotherThread()
{
    open(longText());
    QThread* thread = nullptr;
    rewriteCurrentDocument(state(), u"Changing…"_s, [&thread](const QString& before) {
        thread = QThread::currentThread();
        return before.toUpper();
    });
    QVERIFY(text() == longText());
    untilDone();
    QVERIFY(text() == longText(u'A'));
    QVERIFY(state().currentDocument()->isModified());
    QVERIFY(thread != nullptr);
    QVERIFY(thread != QThread::currentThread());
}

void DocumentRewriterTest::theNoticeHoldsTheInputUntilTheTextIsThere()
{
    open(longText());
    makeUpper();
    QCOMPARE(state().notices().current()->text, u"Changing…"_s);
    QVERIFY(!state().notices().current()->progress);
    QVERIFY(state().notices().holdsInput());
    QVERIFY(state().notices().canStop());
    bool wasThere = false;
    connect(&state().notices(), &Notices::holdsInputChanged, this, [&] { wasThere = text() == longText(u'A'); });
    untilDone();
    QVERIFY(wasThere);
}

void DocumentRewriterTest::theSameTextIsNoChange()
{
    open(longText(u'A'));
    makeUpper();
    untilDone();
    QVERIFY(!state().currentDocument()->isModified());
}

void DocumentRewriterTest::stoppingChangesNothing()
{
    open(longText());
    {
        const test::BlockedWorkers blocked;
        makeUpper();
        state().notices().stop();
        QVERIFY(state().notices().current() == nullptr);
    }
    QCoreApplication::processEvents();
    QVERIFY(text() == longText());
    QVERIFY(!state().currentDocument()->isModified());
}

void DocumentRewriterTest::afterStoppingAnotherCanBegin()
{
    open(longText());
    {
        const test::BlockedWorkers blocked;
        makeUpper();
        state().notices().stop();
        rewriteCurrentDocument(state(), u"Other…"_s, [](const QString&) { return u"other"_s; });
        QCOMPARE(state().notices().current()->text, u"Other…"_s);
    }
    untilDone();
    QCOMPARE(text(), u"other"_s);
}

void DocumentRewriterTest::oneIsMadeAtATime()
{
    open(longText());
    const test::BlockedWorkers blocked;
    makeUpper();
    rewriteCurrentDocument(state(), u"Other…"_s, [](const QString&) { return u"other"_s; });
    QCOMPARE(state().notices().current()->text, u"Changing…"_s);
    state().notices().stop();
    QVERIFY(state().notices().current() == nullptr);
}

void DocumentRewriterTest::aClosedDocumentIsLeftAlone()
{
    open(longText());
    const std::shared_ptr<Document> document = state().currentDocument();
    {
        const test::BlockedWorkers blocked;
        makeUpper();
        state().closeTab(0);
    }
    untilDone();
    QVERIFY(document->content() == longText());

    // Nor is one that nobody holds any more.
    open(longText());
    {
        const test::BlockedWorkers blocked;
        makeUpper();
        state().closeTab(0);
    }
    untilDone();
    QVERIFY(state().documents().isEmpty());
}

void DocumentRewriterTest::aDocumentOfAnotherTextIsLeftAlone()
{
    open(longText());
    {
        const test::BlockedWorkers blocked;
        makeUpper();
        state().currentDocument()->setContent(longText(u'b'));
    }
    untilDone();
    QVERIFY(text() == longText(u'b'));
}

void DocumentRewriterTest::aStateThatEndsMeanwhileIsNoHarm()
{
    open(longText());
    {
        const test::BlockedWorkers blocked;
        makeUpper();
        fixture_.reset();
    }
    QCoreApplication::processEvents();
}

void DocumentRewriterTest::linesAreSorted()
{
    QString lines;
    for (int line = 0; lines.size() <= DocumentRewriter::longestAtOnce; ++line) {
        lines += QString::number(line * 7919 % 100'003) + u'\n';
    }
    for (const bool ascending : {true, false}) {
        open(lines);
        state().sortLines(ascending);
        QCOMPARE(state().notices().current()->text, u"Sorting lines…"_s);
        untilDone();
        QVERIFY(text() == TextTransformer::sortLines(lines, ascending));
        QVERIFY(text() != lines);
    }
}

void DocumentRewriterTest::withoutADocumentNothingHappens()
{
    makeUpper();
    QVERIFY(state().notices().current() == nullptr);
}

const kelm::test::Registered<DocumentRewriterTest> registered;

} // namespace document_rewriter_test

#include "document_rewriter_test.moc"
