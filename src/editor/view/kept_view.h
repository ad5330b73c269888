// What a person sees of a text, kept while another comes in its place.
#pragma once

#include "editor/folding/code_folding_manager.h"
#include "text/view/text_view.h"

#include <QObject>

#include <optional>
#include <vector>

namespace kelm {

/// From its making on it carries the carets of a text, its folds and the row at the top of the screen over every edit,
/// and brings them back when all are done: a fold whose first line is still there and still begins a region, and the
/// scroll position by the text at the top. What stands in a text that another is put in the place of stays as far from
/// its start as it was. A fold within another is not kept. View and folds outlive it.
class KeptView
{
public:
    KeptView(TextView& view, CodeFoldingManager& folds);
    KeptView(const KeptView&) = delete;
    KeptView& operator=(const KeptView&) = delete;

    /// To be called once the regions of the new text are known. While they are still being found, folds stay open.
    void restore();

private:
    void restoreFolds();
    void carry(TextRange range, qsizetype newLength);

    TextView& view_;
    CodeFoldingManager& folds_;
    /// The primary one last.
    std::vector<Selection> selections_;
    std::vector<qsizetype> foldPlaces_;
    std::optional<qsizetype> topPlace_;
    /// How far below the top of the viewport it stands.
    qreal topDistance_ = 0;
    /// Its end ends the carrying.
    QObject context_;
};

} // namespace kelm
