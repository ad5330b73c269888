// The desktop's selection, which the middle mouse button pastes.
#pragma once

#include "text/editing/text_editor.h"
#include "text/view/offered_text.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

namespace kelm {

/// Offers to other programs what a person has selected in a text, where the desktop has a selection of that kind. What
/// was selected last stays on offer when nothing is selected any more, and when the text is gone, until somebody else
/// offers something. No text is made before another program asks for it. Main thread only.
class PrimarySelection final : public QObject
{
public:
    /// Gives the desktop something to offer, which deletes it when another offer has taken its place. Absent where the
    /// desktop has no such selection.
    using Claim = std::function<void(QMimeData* offered)>;

    /// The claim of the desktop that the program runs on.
    static Claim desktopsClaim();

    /// The editor outlives the object.
    explicit PrimarySelection(const TextEditor& editor, Claim claim = desktopsClaim());
    /// Holds no more of the text than was selected.
    ~PrimarySelection() override;

    /// The person has selected something, with the mouse: offers it, so that others hear of it.
    void offer();
    /// The person goes on selecting, with keys: what is on offer follows without a word to anybody, and otherwise is
    /// offered after the event in hand.
    void follow();

private:
    bool take();
    void claimIt();

    const TextEditor& editor_;
    const Claim claim_;
    std::shared_ptr<SelectedText> selected_ = std::make_shared<SelectedText>();
    /// What the desktop offers; null as soon as it is another's.
    QPointer<OfferedText> offered_;
    bool isClaiming_ = false;
};

} // namespace kelm
