// Colours the text of an editor.
#pragma once

#include "app/language/language.h"
#include "editor/highlighter/dirty_ranges.h"
#include "editor/highlighter/rule_tracks.h"
#include "editor/themes/editor_theme.h"
#include "platform/events/background_task.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QPointer>
#include <QRgb>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace kelm {

/// Colours a text by the rules of its language's family: every unit has the theme's text colour, and the rules are
/// applied in their order, where a later one paints over an earlier one. Nothing but the foreground is touched.
///
/// Each run gives what painting the whole text anew would give. What it costs is the stretch that edits have changed
/// since the last one; the colours themselves are found where someone asks the storage for them. Where a run has more
/// to look at than a moment allows, as with a long text that is new or an opened quote, a worker goes on with it: what
/// is asked for meanwhile is guessed from what stands around it, and made right when the worker is done.
///
/// Main thread only. It ends before the text that it coloured last, or that one ends first; both may be.
class SyntaxHighlighter final : private ColorSource
{
public:
    explicit SyntaxHighlighter(EditorTheme initialTheme) : theme(std::move(initialTheme)) {}
    ~SyntaxHighlighter() override;
    SyntaxHighlighter(const SyntaxHighlighter&) = delete;
    SyntaxHighlighter& operator=(const SyntaxHighlighter&) = delete;

    /// What the next run takes its colours from.
    EditorTheme theme;

    /// Tells which part of the text is on screen: its colours are made right first.
    void setShownRange(std::function<TextRange()> shown) { shownRange_ = std::move(shown); }

    /// Brings the colours of a text up to what it now says; without a storage it does nothing. A rule whose pattern
    /// does not compile is left out without a word.
    void highlight(TextStorage* textStorage, Language language);
    /// Whether all colours are those of the text as of the last run, and none is a guess.
    bool isSettled() const { return !task_.isRunning(); }

private:
    struct Told
    {
        TextRange range;
        qsizetype newLength = 0;
    };

    void attach(TextStorage& storage);
    void detach();
    void textReplaced(TextRange range, qsizetype newLength);
    /// Makes the tracks good, here or on a worker.
    void settle();
    void takeSettled(RuleTracks tracks, std::vector<TextRange> changed);
    /// The matches within the ranges may be others than those that colours were found by.
    void refreshColors(const std::vector<TextRange>& changed);
    void refreshKnown(TextRange range);
    /// The same for what was found while the tracks were not good.
    void refreshGuessed();
    std::vector<ColorRun> foundColors(TextRange range);

    // ColorSource
    void findColors(TextRange range) override;

    QPointer<TextStorage> storage_;
    QMetaObject::Connection replacements_;
    QMetaObject::Connection resets_;
    std::optional<Language> language_;
    std::optional<RuleTracks> tracks_;
    /// That of the text, and of each rule.
    std::vector<QRgb> colors_;
    std::function<TextRange()> shownRange_;
    /// Where colours were found between an edit and the next settling. They may be those of a text that has come and
    /// gone meanwhile, as when a quote is typed and taken back: no settling tells of those.
    DirtyRanges guessed_;
    /// How many units have been given a colour since they were last forgotten.
    qsizetype givenUnits_ = 0;
    /// Whether colours that may have been seen are pending again, since too many were given.
    bool hasTakenBack_ = false;
    BackgroundTask task_;
    /// What was edited since the worker began.
    std::vector<Told> since_;
};

} // namespace kelm
