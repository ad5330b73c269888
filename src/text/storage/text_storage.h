// The text of one editor, with its line index and its colours.
#pragma once

#include "text/storage/color_runs.h"
#include "text/storage/line_index.h"
#include "text/storage/text_range.h"

#include <QObject>
#include <QString>

#include <vector>

namespace kelm {

/// One UTF-16 text that is edited in place. Whatever is put in comes out unit for unit: nothing is normalised, repaired
/// or dropped, be it a carriage return, a NUL, a byte-order mark or an unpaired surrogate.
///
/// The text is one flat string. Inserting into it moves the units behind once; a second holder of the same shared
/// string would make each edit copy the whole text first, so nobody keeps what `text()` returns across an edit. Who
/// must keep it lets go in `willEdit` and takes it back in `edited`.
///
/// Main thread only. Offsets outside the text are clamped to it.
class TextStorage final : public QObject
{
    Q_OBJECT

public:
    explicit TextStorage(QObject* parent = nullptr);

    const QString& text() const { return text_; }
    qsizetype length() const { return text_.size(); }
    QString substring(TextRange range) const;
    const LineIndex& lines() const { return lines_; }
    const ColorRuns& foreground() const { return foreground_; }
    const ColorRuns& background() const { return background_; }
    /// Grows with every edit of the text.
    quint64 revision() const { return revision_; }

    /// The range of the lines that `range` touches, terminators included. A line end that `range` stops right behind
    /// does not touch the next line.
    TextRange lineRange(TextRange range) const;

    /// Puts edits and colour changes until the matching `endEditing` into one signal of each kind. Calls nest.
    void beginEditing();
    void endEditing();

    void replace(TextRange range, QStringView replacement);
    /// Puts a whole new text in the place of the old one, sharing the string. It has no colours.
    void setText(const QString& text);

    void setForeground(TextRange range, ColorRuns::Color color);
    /// Colours several ranges in one go; see `ColorRuns::set`.
    void setForeground(const std::vector<ColorRun>& runs);
    /// Colours the whole text anew; see `ColorRuns::assign`.
    void assignForeground(const std::vector<ColorRun>& runs);
    void setBackground(TextRange range, ColorRuns::Color color);

Q_SIGNALS:
    /// Right before the first edit between `beginEditing` and `endEditing`; the text is still the old one.
    void willEdit();
    /// Right before each single replacement, with offsets of that moment.
    void willReplace(kelm::TextRange range, QStringView replacement);
    /// Right before the whole text is put aside for another.
    void willReset();
    /// The text has changed. One signal for all edits of a bracket.
    void edited(const kelm::TextEdit& edit);
    /// Colours have changed within the range and nowhere else.
    void attributesChanged(kelm::TextRange range);

private:
    void colorsChanged(TextRange range);

    QString text_;
    LineIndex lines_;
    ColorRuns foreground_;
    ColorRuns background_;
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
