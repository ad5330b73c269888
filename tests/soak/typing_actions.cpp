// Typing, deleting, undoing, and the clipboard.
#include "platform/text/grapheme_boundaries.h"
#include "soak/action.h"
#include "soak/editing.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMimeData>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList& typedTexts()
{
    static const QStringList texts{u"a"_s,  u"word"_s, u"x = 1;"_s, u"{"_s,           u"}"_s,    u"\""_s, u"'it's'"_s,
                                   u"("_s,  u"// c"_s, u" "_s,      u"<b>"_s,         u"</b>"_s, u":"_s,  u"\t"_s,
                                   u"한"_s, u"굵게"_s, u"😀"_s,      u"👩‍💻"_s, u"é"_s,    u"\n"_s, u"\n    "_s};
    return texts;
}

const QStringList& pastedTexts()
{
    static const QStringList texts{u"pasted\r\nwith\r\nCRLF\r\n"_s,
                                   u"{\n  one\n  two\n  three\n}\n"_s,
                                   u"\r"_s,
                                   u"if x:\n    a\n    b\n    c\n"_s,
                                   u"<p>\n one\n two\n</p>\n"_s,
                                   u"한글 붙여넣기 😀"_s,
                                   u"e\u0301\u2028\u0085"_s,
                                   u"\"unclosed"_s};
    return texts;
}

/// Presses the key that types one character.
void pressFor(TextView& view, const QString& character)
{
    const bool isReturn = character == u"\n";
    const Qt::Key key = isReturn ? Qt::Key_Return : character == u"\t" ? Qt::Key_Tab : Qt::Key_unknown;
    QTest::sendKeyEvent(QTest::Click, &view, key, isReturn ? u"\r"_s : character, Qt::NoModifier);
}

QStringList charactersOf(const QString& text)
{
    QStringList characters;
    for (GraphemeWalk walk(text); !walk.isAtEnd();) {
        characters.append(walk.next().toString());
    }
    return characters;
}

void type(World& world)
{
    const QString text = world.chance.pick(typedTexts());
    world.note(u'"' + QString(text).replace(u'\n', u"\\n"_s) + u'"');
    for (const QString& character : charactersOf(text)) {
        const Before before = beforeEdit(world);
        pressFor(world.text(), character);
        expectInserted(world, before, {character});
    }
}

/// Looks at a composition that went in at the carets before one of them was moved.
void expectComposed(World& world, const Before& before, const QString& content)
{
    if (!before.isFolded) {
        expectEdited(world, before, replaced(before.text, before.ranges, {u"한"_s}));
        return;
    }
    bool isRest = false;
    for (qsizetype at = content.indexOf(u"한"_s); at >= 0 && !isRest; at = content.indexOf(u"한"_s, at + 1)) {
        isRest = replaced(content, {{at, 1}}, {QString()}) == before.text;
    }
    world.expect(isRest, u"a composition has changed more: "_s + howTheyDiffer(before.text, content));
    world.tabs.current()->edited(content);
}

void compose(World& world)
{
    const Before before = beforeEdit(world);
    TextView& view = world.text();
    const auto send = [&view](const QString& preedit, const QString& commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(&view, &event);
    };
    for (const QString& preedit : {u"ㅎ"_s, u"하"_s, u"한"_s}) {
        send(preedit, {});
    }
    const bool hadSelection =
        std::any_of(before.ranges.begin(), before.ranges.end(), [](TextRange range) { return !range.isEmpty(); });
    if (hadSelection) {
        // The selection makes way with the first letter, which is an edit of its own.
        expectInserted(world, before, {QString()});
    }
    const Before composed = beforeEdit(world);
    switch (world.chance.below(4)) {
    case 0:
        world.note(u"committed"_s);
        send({}, u"한"_s);
        break;
    case 1: {
        // What is seen is what is meant: it goes in before the key does its work.
        world.note(u"ended by a key"_s);
        QTest::keyClick(&view, Qt::Key_Right);
        const QString content = world.document()->content();
        world.expect(content.count(u"한"_s) > composed.text.count(u"한"_s), u"a composition was lost at a key"_s);
        expectComposed(world, composed, content);
        return;
    }
    case 2: {
        world.note(u"ended by a change of tab"_s);
        const qsizetype index = world.tabs.currentIndex();
        world.state.setCurrentDocumentIndex((index + 1) % world.tabs.all().size());
        world.settle();
        world.state.setCurrentDocumentIndex(index);
        world.settle();
        if (world.tabs.all().size() == 1) {
            view.commitComposition();
        }
        break;
    }
    default:
        world.note(u"cancelled"_s);
        send({}, {});
        return;
    }
    expectInserted(world, composed, {u"한"_s});
}

void erase(World& world)
{
    const bool isBack = world.chance.oneIn(2);
    world.note(isBack ? u"backspace"_s : u"forward"_s);
    const Before before = beforeEdit(world);
    std::vector<TextRange> ranges;
    for (const TextRange range : before.ranges) {
        const qsizetype next = !range.isEmpty() ? range.end()
                               : isBack         ? previousGraphemeBoundary(before.shown, range.location)
                                                : nextGraphemeBoundary(before.shown, range.location);
        ranges.push_back(TextRange::between(range.location, next));
    }
    QTest::keyClick(&world.text(), isBack ? Qt::Key_Backspace : Qt::Key_Delete);
    expectErased(world, before, ranges);
}

void eraseWord(World& world)
{
    const Before before = beforeEdit(world);
    QTest::keyClick(&world.text(), world.chance.oneIn(2) ? Qt::Key_Backspace : Qt::Key_Delete, Qt::ControlModifier);
    expectErasedSomewhere(world, before);
}

void undo(World& world)
{
    for (qsizetype count = 1 + world.chance.below(4); count > 0; --count) {
        const Before before = beforeEdit(world);
        QTest::keyClick(&world.text(), Qt::Key_Z, Qt::ControlModifier);
        expectUndone(world, before);
    }
}

void redo(World& world)
{
    for (qsizetype count = 1 + world.chance.below(3); count > 0; --count) {
        const Before before = beforeEdit(world);
        QTest::keyClick(&world.text(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        expectRedone(world, before);
    }
}

/// Some way back and the same way ahead must lead to the same text.
void undoAndRedo(World& world)
{
    TextEditor& editor = world.text().editor();
    const QString text = world.tabs.current()->text();
    int steps = 0;
    for (; steps < 30 && editor.canUndo(); ++steps) {
        const Before before = beforeEdit(world);
        editor.undo();
        expectUndone(world, before);
    }
    world.note(u"%1 steps"_s.arg(steps));
    for (int step = 0; step < steps; ++step) {
        const Before before = beforeEdit(world);
        world.expect(editor.canRedo(), u"what was undone cannot be redone"_s);
        editor.redo();
        expectRedone(world, before);
    }
    const QString content = world.document()->content();
    world.expect(content == text, u"undo and redo lead elsewhere: "_s + howTheyDiffer(text, content));
}

void copyOrCut(World& world)
{
    const bool isCut = world.chance.oneIn(2);
    world.note(isCut ? u"cut"_s : u"copy"_s);
    const Before before = beforeEdit(world);
    const QStringList texts = world.text().editor().selectedTexts();
    QTest::keyClick(&world.text(), isCut ? Qt::Key_X : Qt::Key_C, Qt::ControlModifier);
    if (!texts.isEmpty()) {
        world.clipboard = texts;
    }
    if (isCut && !texts.isEmpty()) {
        expectInserted(world, before, {QString()});
    }
}

void paste(World& world)
{
    if (world.clipboard.isEmpty() || world.chance.oneIn(3)) {
        world.clipboard = {world.chance.pick(pastedTexts())};
        QGuiApplication::clipboard()->setText(world.clipboard.first());
    }
    const Before before = beforeEdit(world);
    const bool oneEach =
        world.clipboard.size() > 1 && world.clipboard.size() == static_cast<qsizetype>(before.ranges.size());
    const QStringList pieces = oneEach ? world.clipboard : QStringList{world.clipboard.join(u'\n')};
    const qsizetype growth = pieces.first().size() * static_cast<qsizetype>(before.ranges.size());
    if (before.text.size() + growth > longestText) {
        return;
    }
    QTest::keyClick(&world.text(), Qt::Key_V, Qt::ControlModifier);
    expectInserted(world, before, pieces);
}

/// Drops a text that another program drags in.
void drop(World& world)
{
    const Before before = beforeEdit(world);
    TextView& view = world.text();
    const QString text = u"dropped\n"_s;
    const QPoint point(static_cast<int>(world.chance.below(view.viewport()->width())),
                       static_cast<int>(world.chance.below(view.viewport()->height())));
    const qsizetype at = view.placeAt(point).offset;
    QMimeData data;
    data.setText(text);
    QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.viewport(), &enter);
    QDropEvent event(point, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.viewport(), &event);
    const QString content = world.document()->content();
    if (!before.isFolded) {
        expectEdited(world, before, replaced(before.text, {{at, 0}}, {text}));
        return;
    }
    // What stood before the place on screen must stand before what was dropped, but where that is a fold.
    const TextRange put = view.selectedRange();
    const qsizetype fold = before.shown.lastIndexOf(CodeFoldingManager::foldPlaceholder, at);
    const qsizetype behind = fold < 0 ? 0 : fold + CodeFoldingManager::foldPlaceholder.size();
    const QString left = at > behind ? before.shown.mid(behind, at - behind).right(20) : QString();
    world.expect(content.mid(put.location, put.length) == text &&
                     content.left(put.location).right(left.size()) == left &&
                     content.left(put.location) + content.mid(put.end()) == before.text,
                 u"a text was dropped elsewhere: "_s + howTheyDiffer(before.text, content));
    world.tabs.current()->edited(content);
}

} // namespace

std::vector<Action> typingActions()
{
    return {
        {"type", 60, hasRoom, type},
        {"compose Korean", 8, hasRoom, compose},
        {"erase", 30, hasText, erase},
        {"erase a word", 8, hasText, eraseWord},
        {"undo", 20, hasText, undo},
        {"redo", 12, hasText, redo},
        {"undo and redo", 3, hasText, undoAndRedo},
        {"copy or cut", 12, hasText, copyOrCut},
        {"paste", 14, hasRoom, paste},
        {"drop a text", 4, hasRoom, drop},
    };
}

} // namespace kelm::soak
