// The text of an editing surface with its folds.
#pragma once

#include "editor/folding/code_folding_manager.h"
#include "text/editing/whole_text.h"

#include <functional>

namespace kelm {

/// The whole text is what is shown with the body of every fold in its place.
class FoldedText final : public WholeText
{
public:
    /// The manager outlives it. `revealed` is called when folds were undone to show what they hid.
    FoldedText(CodeFoldingManager& manager, std::function<void()> revealed);
    ~FoldedText() override;

    bool isShortened() const override { return manager_.isTextFolded(); }
    TextTree text() const override { return manager_.unfoldedText(); }
    TextRange whole(TextRange shown) const override { return manager_.wholeRange(shown); }
    TextRange shown(TextRange whole) const override { return manager_.shownRange(whole); }
    std::vector<TextRange> plainParts(TextRange shown) const override;
    void reveal(TextRange whole) override;

private:
    CodeFoldingManager& manager_;
    std::function<void()> revealed_;
};

} // namespace kelm
