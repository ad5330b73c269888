// The text of one editor, with its line index and its colours.
#pragma once

#include "text/storage/color_runs.h"
#include "text/storage/line_index.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QObject>
#include <QString>

#include <vector>

namespace kelm {

/// Finds the colours of a text when they are asked for.
class ColorSource
{
public:
    virtual ~ColorSource() = default;

    /// Gives at least the units of a range that are pending a colour, with `TextStorage::giveForeground`.
    virtual void findColors(TextRange range) = 0;
};

/// One UTF-16 text that is edited in place. Whatever is put in comes out unit for unit: nothing is normalised, repaired
/// or dropped, be it a carriage return, a NUL, a byte-order mark or an unpaired surrogate.
///
/// The storage owns the text, alone, as a tree: an edit anywhere costs the way to one piece. `snapshot` gives the text
/// as it stands, for nothing, to whoever needs it longer than until the next edit, or on another thread.
///
/// Main thread only. Offsets outside the text are clamped to it.
class TextStorage final : public QObject
{
    Q_OBJECT

public:
    explicit TextStorage(QObject* parent = nullptr);

    /// The text as it is, which changes with the next edit.
    const TextTree& tree() const { return tree_; }
    /// The text as it stands now, for as long as it is kept.
    TextTree snapshot() const { return tree_; }
    /// A copy of the whole text: linear in it, and not for what is done at every key.
    QString text() const { return tree_.toString(); }
    qsizetype length() const { return tree_.length(); }
    QString substring(TextRange range) const { return tree_.substring(range); }
    const LineIndex& lines() const { return lines_; }
    /// The colours as far as they are known.
    const ColorRuns& foreground() const { return foreground_; }
    /// The colours of a range, those that are pending found first.
    std::vector<ColorRun> colorsIn(TextRange range);
    const ColorRuns& background() const { return background_; }
    /// Grows with every edit of the text.
    quint64 revision() const { return revision_; }

    /// The range of the lines that `range` touches, terminators included. A line end that `range` stops right behind
    /// does not touch the next line.
    TextRange lineRange(TextRange range) const;

    /// Puts edits and colour changes until the matching `endEditing` into one signal of each kind. Calls nest.
    void beginEditing();
    void endEditing();

    void replace(TextRange range, const TextTree& replacement);
    void replace(TextRange range, QStringView replacement) { replace(range, TextTree(replacement)); }
    /// Puts a whole new text in the place of the old one. It has no colours.
    void setText(const TextTree& text);
    void setText(QStringView text) { setText(TextTree(text)); }

    void setForeground(TextRange range, ColorRuns::Color color);
    /// Colours several ranges in one go; see `ColorRuns::set`.
    void setForeground(const std::vector<ColorRun>& runs);
    /// Colours the whole text anew; see `ColorRuns::assign`.
    void assignForeground(const std::vector<ColorRun>& runs);
    void setBackground(TextRange range, ColorRuns::Color color);

    /// From now on the source finds the foreground where it is pending, which a new text is from its start to its end;
    /// none for a text whose colours are all set. The source outlives its time here.
    void setColorSource(ColorSource* source);
    /// Leaves the colours of a range to be found by the source when they are asked for.
    void forgetForeground(TextRange range);
    /// The same as `setForeground`, for colours that were pending: nobody has seen them yet, and nobody is told.
    void giveForeground(const std::vector<ColorRun>& runs) { foreground_.set(runs); }

Q_SIGNALS:
    /// Right before each single replacement, with offsets of that moment.
    void willReplace(kelm::TextRange range, const kelm::TextTree& replacement);
    /// Right before the whole text is put aside for another.
    void willReset();
    /// The text has changed. One signal for all edits of a bracket.
    void edited(const kelm::TextEdit& edit);
    /// Colours have changed within the range and nowhere else.
    void attributesChanged(kelm::TextRange range);

private:
    void colorsChanged(TextRange range);

    TextTree tree_;
    LineIndex lines_{tree_};
    ColorRuns foreground_;
    ColorRuns background_;
    ColorSource* colorSource_ = nullptr;
    quint64 revision_ = 0;

    int depth_ = 0;
    std::optional<TextEdit> pendingEdit_;
    std::optional<TextRange> pendingColors_;
};

/// Brackets edits for the life of the object.
class EditingBracket
{
public:
    explicit EditingBracket(TextStorage& storage) : storage_(storage) { storage_.beginEditing(); }
    ~EditingBracket() { storage_.endEditing(); }
    EditingBracket(const EditingBracket&) = delete;
    EditingBracket& operator=(const EditingBracket&) = delete;

private:
    TextStorage& storage_;
};

} // namespace kelm
