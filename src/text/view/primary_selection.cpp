#include "text/view/primary_selection.h"

#include "platform/events/main_queue.h"

#include <QClipboard>
#include <QGuiApplication>

#include <utility>

namespace kelm {

namespace {

/// As many are cut out of the text with every key; the text around more of them is held as long as they are on offer,
/// or as the view is there.
constexpr std::size_t fewSelections = 16;

} // namespace

PrimarySelection::Claim PrimarySelection::desktopsClaim()
{
    if (!QGuiApplication::clipboard()->supportsSelection()) {
        return {};
    }
    return [](QMimeData* offered) { QGuiApplication::clipboard()->setMimeData(offered, QClipboard::Selection); };
}

PrimarySelection::PrimarySelection(const TextEditor& editor, Claim claim) : editor_(editor), claim_(std::move(claim))
{
    if (claim_) {
        // Not every platform deletes what it does not offer any more.
        QClipboard* const clipboard = QGuiApplication::clipboard();
        connect(clipboard, &QClipboard::selectionChanged, this, [this, clipboard] {
            if (!offered_.isNull() && clipboard->supportsSelection() && !clipboard->ownsSelection()) {
                offered_ = nullptr;
            }
        });
    }
}

PrimarySelection::~PrimarySelection()
{
    selected_->letGoOfTheRest();
}

void PrimarySelection::offer()
{
    if (take()) {
        claimIt();
    }
}

void PrimarySelection::follow()
{
    if (take() && offered_.isNull() && !std::exchange(isClaiming_, true)) {
        onMainQueue(this, [this] { claimIt(); });
    }
}

bool PrimarySelection::take()
{
    if (!claim_ || !editor_.selections().hasText()) {
        return false;
    }
    *selected_ = editor_.selected();
    if (editor_.selections().all().size() <= fewSelections) {
        selected_->letGoOfTheRest();
    }
    return true;
}

void PrimarySelection::claimIt()
{
    isClaiming_ = false;
    // Who has it deletes it.
    auto offered = std::make_unique<OfferedText>(selected_);
    offered_ = offered.get();
    claim_(offered.release());
}

} // namespace kelm
