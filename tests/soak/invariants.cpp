#include "soak/invariants.h"

#include "app/recovery/copy_records.h"
#include "app/state/unsaved_texts.h"
#include "editor/folding/foldable_regions.h"
#include "editor/highlighter/rule_lists.h"
#include "editor/highlighter/rule_painting.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <chrono>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

void checkDocument(World& world, const Document& document, const ShadowDocument& shadow)
{
    const QString name = document.title();
    if (document.content() != shadow.text()) {
        world.fail(name + u" holds another text: "_s + howTheyDiffer(shadow.text(), document.content()));
    }
    world.expect(document.isModified() == shadow.isModified,
                 name + (shadow.isModified ? u" should be modified"_s : u" should not be modified"_s));
    world.expect(document.fileURL() == shadow.url, name + u" belongs to another file"_s);
}

/// The line index, which is shifted with every edit, must be the one that the text as it stands gives.
void checkLines(World& world, const TextStorage& storage)
{
    TextStorage fresh;
    fresh.setText(storage.text());
    const LineIndex& expected = fresh.lines();
    const LineIndex& found = storage.lines();
    bool isSame = expected.lineCount() == found.lineCount();
    for (qsizetype line = 0; isSame && line < expected.lineCount(); ++line) {
        isSame = expected.start(line) == found.start(line);
    }
    world.expect(isSame, u"the lines are not those of the text"_s);
}

void checkEditor(World& world, const ShadowDocument& shadow)
{
    EditorContainerView* editor = world.editor();
    if (!world.expect(editor != nullptr && editor->isVisible(), u"the current document has no editor"_s)) {
        return;
    }
    if (!world.isFolded() && editor->text() != shadow.text()) {
        world.fail(u"the editor shows another text: "_s + howTheyDiffer(shadow.text(), editor->text()));
    }
    world.expect(!editor->textView().isComposing(), u"a composition was left open"_s);
    checkLines(world, editor->textView().storage());
    const qsizetype length = editor->text().size();
    for (const Selection& selection : editor->textView().editor().selections().all()) {
        world.expect(selection.range().end() <= length, u"a selection reaches behind the text"_s);
    }
}

} // namespace

void checkInvariants(World& world)
{
    const auto& documents = world.state.documents();
    const auto& shadows = world.tabs.all();
    if (!world.expect(documents.size() == shadows.size(),
                      u"%1 tabs are open instead of %2"_s.arg(documents.size()).arg(shadows.size()))) {
        return;
    }
    const QList<TabItemView*>& views = world.window.tabBar().tabs();
    world.expect(views.size() == shadows.size(), u"the strip shows %1 tabs"_s.arg(views.size()));
    world.expect(
        world.state.currentDocumentIndex() == world.tabs.currentIndex(),
        u"tab %1 is current instead of %2"_s.arg(world.state.currentDocumentIndex()).arg(world.tabs.currentIndex()));
    for (qsizetype index = 0; index < documents.size() && !world.failure; ++index) {
        checkDocument(world, *documents[index], shadows[index]);
        world.expect(views[index]->document() == documents[index], u"the strip has another order"_s);
    }
    if (const ShadowDocument* current = world.tabs.current(); current != nullptr && !world.failure) {
        checkEditor(world, *current);
    }
    world.expect((world.window.sidebar() != nullptr) == world.state.showSidebar(), u"the sidebar is not as its flag"_s);
}

void checkFollowers(World& world)
{
    EditorContainerView* editor = world.editor();
    if (editor == nullptr) {
        return;
    }
    // As the pause behind the last key would.
    editor->setCurrentLanguage(editor->currentLanguage());
    if (!world.waitFor([editor] { return editor->isSettled(); }, u"the colours to be found"_s)) {
        return;
    }
    TextStorage& storage = editor->textView().storage();
    const QString text = storage.text();
    const EditorTheme& theme = editor->theme();
    const std::vector<ColorRun> colors =
        paintRules(text, theme.textColor.toColor().rgba(), makeRules(rules::of(editor->currentLanguage()), theme));
    world.expect(storage.colorsIn({0, text.size()}) == colors, u"the colours are not those of the text"_s);
    FoldableRegions whole(editor->currentLanguage().folding());
    whole.reset(text.size());
    whole.settle(storage.tree());
    world.expect(editor->codeFoldingManager().foldableRegions() == whole.all(),
                 u"the foldable regions are not those of the text"_s);
}

void checkDisk(World& world)
{
    const QStringList differences = world.disk.differences();
    world.expect(differences.isEmpty(), u"the disk is not as it must be:\n  "_s + differences.join(u"\n  "_s));
}

/// Of two sorted lists.
QString firstDifference(const QStringList& found, const QStringList& wanted)
{
    const auto [one, other] = std::mismatch(found.begin(), found.end(), wanted.begin(), wanted.end());
    constexpr qsizetype enough = 200;
    return u"found "_s + (one != found.end() ? one->left(enough) : u"nothing"_s) + u", wanted "_s +
           (other != wanted.end() ? other->left(enough) : u"nothing"_s);
}

void checkStore(World& world)
{
    constexpr std::chrono::seconds longest{30};
    if (!world.expect(world.state.unsavedTexts().store().finish(longest), u"the store does not end"_s)) {
        return;
    }
    QStringList found;
    const QDir folder(world.unsavedFolder());
    for (const QString& name : folder.entryList({u"*.copy"_s}, QDir::Files)) {
        QFile file(folder.filePath(name));
        const auto content = file.open(QIODevice::ReadOnly) ? readCopy(file) : std::nullopt;
        // What a save wrote over is another program's, and no text of a tab.
        if (!content || !content->header.isReplaced) {
            found.append(content ? content->text.toString() : u"(a damaged copy)"_s);
        }
    }
    QStringList wanted = world.tabs.unsavedTexts();
    found.sort();
    wanted.sort();
    world.expect(
        found.size() == wanted.size(),
        u"the store holds %1 texts instead of %2; the first other one: "_s.arg(found.size()).arg(wanted.size()) +
            firstDifference(found, wanted));
    for (qsizetype text = 0; text < std::min(found.size(), wanted.size()) && !world.failure; ++text) {
        world.expect(found[text] == wanted[text],
                     u"the store holds another text: "_s + howTheyDiffer(wanted[text], found[text]));
    }
}

} // namespace kelm::soak
