#include "support/shown_text_view.h"
#include "support/test_program.h"
#include "text/view/primary_selection.h"

#include <QtTest>

namespace primary_selection_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using test::ShownTextView;

namespace {

/// A desktop that has such a selection, with one offer at a time.
struct Desktop
{
    std::unique_ptr<QMimeData> offered;
    int claims = 0;

    PrimarySelection::Claim claim()
    {
        return [this](QMimeData* data) {
            offered.reset(data);
            ++claims;
        };
    }
    QString text() const { return offered ? offered->text() : u"(nothing)"_s; }
};

} // namespace

class PrimarySelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsSelectedIsOffered();
    void keysOfferOnceAndTheOfferFollows();
    void whatWasSelectedLastStays();
    void anotherOfferIsTakenOverAgain();
    void withoutSuchASelectionNothingIsOffered();
    void theTextIsPlainAlone();
};

void PrimarySelectionTest::whatIsSelectedIsOffered()
{
    ShownTextView view(u"one [two] three"_s);
    Desktop desktop;
    PrimarySelection selection(view.editor(), desktop.claim());
    selection.offer();
    QCOMPARE(desktop.text(), u"two"_s);
    view.set(u"[a] [b]\n[c]"_s);
    selection.offer();
    QCOMPARE(desktop.text(), u"a\nb\nc"_s);
    QCOMPARE(desktop.claims, 2);
}

void PrimarySelectionTest::keysOfferOnceAndTheOfferFollows()
{
    ShownTextView view(u"|abcdef"_s);
    Desktop desktop;
    PrimarySelection selection(view.editor(), desktop.claim());
    for (int count = 1; count <= 3; ++count) {
        view.editor().move(Movement::characterRight, Extend::yes);
        selection.follow();
    }
    // Not on the road of a key.
    QCOMPARE(desktop.claims, 0);
    QTRY_COMPARE(desktop.claims, 1);
    QCOMPARE(desktop.text(), u"abc"_s);
    view.editor().move(Movement::characterRight, Extend::yes);
    selection.follow();
    QCOMPARE(desktop.text(), u"abcd"_s);
    QCoreApplication::processEvents();
    QCOMPARE(desktop.claims, 1);
}

void PrimarySelectionTest::whatWasSelectedLastStays()
{
    auto view = std::make_unique<ShownTextView>(u"one [two] three"_s);
    Desktop desktop;
    auto selection = std::make_unique<PrimarySelection>(view->editor(), desktop.claim());
    selection->offer();
    view->editor().insertText(u"typed over"_s, EditKind::typing);
    selection->follow();
    QCOMPARE(desktop.text(), u"two"_s);
    selection.reset();
    view.reset();
    QCOMPARE(desktop.text(), u"two"_s);
}

void PrimarySelectionTest::anotherOfferIsTakenOverAgain()
{
    ShownTextView view(u"one [two] three"_s);
    Desktop desktop;
    PrimarySelection selection(view.editor(), desktop.claim());
    selection.offer();
    desktop.offered = std::make_unique<QMimeData>();
    selection.follow();
    QTRY_COMPARE(desktop.text(), u"two"_s);
}

void PrimarySelectionTest::withoutSuchASelectionNothingIsOffered()
{
    ShownTextView view(u"one [two] three"_s);
    PrimarySelection selection(view.editor(), {});
    selection.offer();
    selection.follow();
    QCoreApplication::processEvents();
}

void PrimarySelectionTest::theTextIsPlainAlone()
{
    const OfferedText offered(
        std::make_shared<SelectedText>(TextTree(u"a\u00a0b\u2029"_s), std::vector<TextRange>{{0, 4}}));
    QVERIFY(offered.hasText());
    QVERIFY(!offered.hasUrls() && !offered.hasHtml() && !offered.hasImage());
    QCOMPARE(offered.formats(), QStringList{u"text/plain"_s});
    QCOMPARE(offered.text(), u"a\u00a0b\u2029"_s);
    QCOMPARE(offered.data(u"text/plain"_s), u"a\u00a0b\u2029"_s.toUtf8());
    QVERIFY(offered.data(u"text/html"_s).isEmpty());
}

const kelm::test::Registered<PrimarySelectionTest> registered(kelm::test::Toolkit::widgets);

} // namespace primary_selection_test

#include "primary_selection_test.moc"
