#include "app/document/document.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace document_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QUrl file(const QString& path)
{
    return QUrl::fromLocalFile(path);
}

Document untitled(const QString& text)
{
    return Document(text, std::nullopt, std::nullopt, std::nullopt);
}

} // namespace

struct Editor : DocumentEditor
{
    TextTree text;

    TextTree wholeText() const override { return text; }
};

class DocumentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewDocumentHasItsDefaults();
    void constructionTakesWhatItIsGiven();
    void identitiesDiffer();
    void titleFollowsFileAndModification_data();
    void titleFollowsFileAndModification();
    void languageFollowsChoiceAndExtension_data();
    void languageFollowsChoiceAndExtension();
    void clearingTheChoiceConsultsTheExtension();
    void storingEqualTextDoesNotModify();
    void storingOtherTextModifiesForGood();
    void textsThatDifferOnlyInOddUnitsDiffer_data();
    void textsThatDifferOnlyInOddUnitsDiffer();
    void eachStoreTellsObserversBeforeTheFlagIsSet();
    void theTextIsDrawnFromTheEditor();
    void aStoredTextWaitsForTheEditor();
    void eachFieldTellsOfItsChangeOnce();
    void labelsChangeNothingElse();
    void everyFieldIsAProperty();
};

void DocumentTest::aNewDocumentHasItsDefaults()
{
    const Document document = untitled(QString());
    QCOMPARE(document.content(), QString());
    QVERIFY(!document.fileURL());
    QVERIFY(!document.isModified());
    QVERIFY(document.cursorPosition() == (CursorPosition{1, 1, 0}));
    QVERIFY(!document.selection());
    QVERIFY(!document.explicitLanguage());
    QVERIFY(!document.lessonInfo());
    QVERIFY(document.encoding() == TextEncoding::utf8);
    QCOMPARE(document.lineEnding(), LineEnding(LineEnding::lf));
    QVERIFY(document.indentStyle() == IndentStyle::spaces(4));
    QCOMPARE(document.title(), u"Untitled"_s);
    QCOMPARE(document.language(), Language(Language::plainText));
    QVERIFY(!document.id().isNull());
}

void DocumentTest::constructionTakesWhatItIsGiven()
{
    const LessonInfo lesson{u"intro"_s, u"Start"_s, 3, 7, {u"KEY"_s}, u"ko"_s};
    const Document document(u"a\r\nb"_s, file(u"/tmp/a.txt"_s), Language::rust, lesson);
    QCOMPARE(document.content(), u"a\r\nb"_s);
    QVERIFY(document.fileURL() == file(u"/tmp/a.txt"_s));
    QVERIFY(document.explicitLanguage() == Language(Language::rust));
    QVERIFY(document.lessonInfo() == lesson);
    QVERIFY(!document.isModified());
    // The line ends of the text are not looked at.
    QCOMPARE(document.lineEnding(), LineEnding(LineEnding::lf));
}

void DocumentTest::identitiesDiffer()
{
    QVERIFY(untitled(u"a"_s).id() != untitled(u"a"_s).id());
}

void DocumentTest::titleFollowsFileAndModification_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QString>("title");
    QTest::newRow("untitled") << QUrl() << u"Untitled"_s;
    QTest::newRow("file") << file(u"/home/kim/main.py"_s) << u"main.py"_s;
    QTest::newRow("no extension") << file(u"/home/kim/Makefile"_s) << u"Makefile"_s;
    QTest::newRow("blank and percent") << file(u"/home/kim/a b%20c.txt"_s) << u"a b%20c.txt"_s;
    QTest::newRow("korean") << file(u"/home/kim/안녕.txt"_s) << u"안녕.txt"_s;
    QTest::newRow("hash and question mark") << file(u"/a/#1?.c"_s) << u"#1?.c"_s;
    QTest::newRow("folder") << QUrl(u"file:///a/src/"_s) << u"src"_s;
}

void DocumentTest::titleFollowsFileAndModification()
{
    QFETCH(QUrl, url);
    QFETCH(QString, title);
    Document document = untitled(u"x"_s);
    if (!url.isEmpty()) {
        document.setFileURL(url);
    }
    QCOMPARE(document.title(), title);
    document.setContent(u"y"_s);
    QCOMPARE(document.title(), title + u" *"_s);
    document.setIsModified(false);
    QCOMPARE(document.title(), title);
}

void DocumentTest::languageFollowsChoiceAndExtension_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("choice");
    QTest::addColumn<int>("language");
    QTest::newRow("upper-case extension") << u"/a/X.PY"_s << -1 << int(Language::python);
    QTest::newRow("header") << u"/a/x.h"_s << -1 << int(Language::c);
    QTest::newRow("last extension counts") << u"/a/x.tar.json"_s << -1 << int(Language::json);
    QTest::newRow("no extension") << u"/a/py"_s << -1 << int(Language::plainText);
    QTest::newRow("dot in folder only") << u"/a.py/x"_s << -1 << int(Language::plainText);
    QTest::newRow("leading dot is no extension") << u"/a/.py"_s << -1 << int(Language::plainText);
    QTest::newRow("trailing dot") << u"/a/x."_s << -1 << int(Language::plainText);
    QTest::newRow("choice goes first") << u"/a/x.txt"_s << int(Language::javascript) << int(Language::javascript);
    QTest::newRow("choice without file") << QString() << int(Language::ruby) << int(Language::ruby);
    QTest::newRow("chosen plain text") << u"/a/x.py"_s << int(Language::plainText) << int(Language::plainText);
}

void DocumentTest::languageFollowsChoiceAndExtension()
{
    QFETCH(QString, path);
    QFETCH(int, choice);
    QFETCH(int, language);
    Document document = untitled(QString());
    if (!path.isEmpty()) {
        document.setFileURL(file(path));
    }
    if (choice >= 0) {
        document.setExplicitLanguage(Language(Language::Case(choice)));
    }
    QCOMPARE(int(document.language()), language);
}

void DocumentTest::clearingTheChoiceConsultsTheExtension()
{
    Document document(QString(), file(u"/a/x.txt"_s), Language::javascript, std::nullopt);
    QCOMPARE(document.language(), Language(Language::javascript));
    document.setFileURL(file(u"/a/x.py"_s));
    QCOMPARE(document.language(), Language(Language::javascript));
    document.setExplicitLanguage(std::nullopt);
    QCOMPARE(document.language(), Language(Language::python));
    document.setFileURL(file(u"/a/x.txt"_s));
    QCOMPARE(document.language(), Language(Language::plainText));
}

void DocumentTest::storingEqualTextDoesNotModify()
{
    const QString text = u"one\ntwo"_s;
    Document document = untitled(text);
    document.setContent(text);
    QVERIFY(!document.isModified());
    document.setContent(QString(text.constData(), text.size()));
    QVERIFY(!document.isModified());
    document.setIsModified(true);
    document.setContent(text);
    QVERIFY(document.isModified());

    Document empty = untitled(QString());
    empty.setContent(u""_s);
    QVERIFY(!empty.isModified());
}

void DocumentTest::storingOtherTextModifiesForGood()
{
    Document document = untitled(u"one"_s);
    document.setContent(u"two"_s);
    QVERIFY(document.isModified());
    document.setContent(u"one"_s);
    QVERIFY(document.isModified());
}

void DocumentTest::textsThatDifferOnlyInOddUnitsDiffer_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("line ends") << u"a\r\nb"_s << u"a\nb"_s;
    QTest::newRow("canonically equal") << u"\u00e9"_s << u"e\u0301"_s;
    QTest::newRow("trailing NUL") << u"a"_s << QString(u"a\0"_s);
    QTest::newRow("leading mark") << u"a"_s << u"\ufeffa"_s;
    QTest::newRow("no-break blank") << u"a b"_s << u"a\u00a0b"_s;
    QTest::newRow("case") << u"a"_s << u"A"_s;
}

void DocumentTest::textsThatDifferOnlyInOddUnitsDiffer()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    Document document = untitled(before);
    document.setContent(after);
    QVERIFY(document.isModified());
    QCOMPARE(document.content(), after);
}

void DocumentTest::eachStoreTellsObserversBeforeTheFlagIsSet()
{
    Document document = untitled(u"one"_s);
    QStringList events;
    connect(&document, &Document::contentChanged, this,
            [&] { events << u"content %1 %2"_s.arg(document.content()).arg(document.isModified()); });
    connect(&document, &Document::isModifiedChanged, this, [&] { events << u"modified"_s; });
    document.setContent(u"two"_s);
    QCOMPARE(events, (QStringList{u"content two 0"_s, u"modified"_s}));
    document.setContent(u"two"_s);
    QCOMPARE(events.size(), 3);
}

void DocumentTest::theTextIsDrawnFromTheEditor()
{
    Document document = untitled(u"one"_s);
    Editor editor;
    editor.text = document.text();
    document.setEditor(&editor);
    QSignalSpy content(&document, &Document::contentChanged);
    editor.text.replace({0, 0}, u"t");
    QCOMPARE(document.content(), u"tone"_s);
    QVERIFY(!document.isModified());
    document.noteEdit();
    QVERIFY(document.isModified());
    QCOMPARE(content.count(), 1);
    // What the editor leaves behind is the document's.
    document.setEditor(nullptr);
    editor.text = TextTree();
    QCOMPARE(document.content(), u"tone"_s);
}

void DocumentTest::aStoredTextWaitsForTheEditor()
{
    Document document = untitled(u"one"_s);
    Editor editor;
    editor.text = document.text();
    document.setEditor(&editor);
    QVERIFY(!document.hasStoredText());
    document.setContent(u"one"_s);
    QVERIFY(!document.isModified());
    document.setContent(u"two"_s);
    QVERIFY(document.isModified());
    QVERIFY(document.hasStoredText());
    QCOMPARE(document.content(), u"two"_s);
    editor.text = document.takeStoredText();
    QVERIFY(!document.hasStoredText());
    QCOMPARE(document.content(), u"two"_s);
    // One that was stored and never taken is not lost with the editor.
    document.setContent(u"three"_s);
    document.setEditor(nullptr);
    QCOMPARE(document.content(), u"three"_s);
}

void DocumentTest::eachFieldTellsOfItsChangeOnce()
{
    Document document = untitled(QString());
    QSignalSpy url(&document, &Document::fileURLChanged);
    QSignalSpy modified(&document, &Document::isModifiedChanged);
    QSignalSpy cursor(&document, &Document::cursorPositionChanged);
    QSignalSpy selection(&document, &Document::selectionChanged);
    QSignalSpy language(&document, &Document::explicitLanguageChanged);
    QSignalSpy lesson(&document, &Document::lessonInfoChanged);
    QSignalSpy encoding(&document, &Document::encodingChanged);
    QSignalSpy lineEnding(&document, &Document::lineEndingChanged);
    QSignalSpy indent(&document, &Document::indentStyleChanged);
    QSignalSpy title(&document, &Document::titleChanged);
    QSignalSpy derivedLanguage(&document, &Document::languageChanged);
    for (int i = 0; i < 2; ++i) {
        document.setFileURL(file(u"/a/x.py"_s));
        document.setIsModified(true);
        document.setCursorPosition({2, 3, 8});
        document.setSelection(TextSelection{{2, 3, 8}, {1, 1, 0}});
        document.setExplicitLanguage(Language(Language::go));
        document.setLessonInfo(LessonInfo{u"intro"_s, std::nullopt, 1, 1, {}, std::nullopt});
        document.setEncoding(TextEncoding::ascii);
        document.setLineEnding(LineEnding::crlf);
        document.setIndentStyle(IndentStyle::tabs());
    }
    for (const QSignalSpy* spy :
         {&url, &modified, &cursor, &selection, &language, &lesson, &encoding, &lineEnding, &indent}) {
        QCOMPARE(spy->count(), 1);
    }
    QCOMPARE(title.count(), 2);
    QCOMPARE(derivedLanguage.count(), 2);
    // The ends of a selection are not put in order.
    QCOMPARE(document.selection()->start.offset, 8);
}

void DocumentTest::labelsChangeNothingElse()
{
    Document document = untitled(u"a\nb"_s);
    const QSignalSpy content(&document, &Document::contentChanged);
    document.setEncoding(TextEncoding::utf16);
    document.setLineEnding(LineEnding::crlf);
    document.setIndentStyle(IndentStyle::spaces(2));
    document.setCursorPosition({9, 9, 9});
    QCOMPARE(document.content(), u"a\nb"_s);
    QVERIFY(!document.isModified());
    QCOMPARE(content.count(), 0);
}

void DocumentTest::everyFieldIsAProperty()
{
    const QMetaObject& meta = Document::staticMetaObject;
    QStringList names;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        names << QString::fromLatin1(property.name());
        QVERIFY(property.metaType().isValid());
        QVERIFY(property.hasNotifySignal() || property.isConstant());
    }
    QCOMPARE(names, (QStringList{u"id"_s, u"content"_s, u"fileURL"_s, u"isModified"_s, u"cursorPosition"_s,
                                 u"selection"_s, u"explicitLanguage"_s, u"lessonInfo"_s, u"encoding"_s, u"lineEnding"_s,
                                 u"indentStyle"_s, u"title"_s, u"language"_s}));
}

const kelm::test::Registered<DocumentTest> registered;

} // namespace document_test

#include "document_test.moc"
