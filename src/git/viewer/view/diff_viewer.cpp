#include "git/viewer/view/diff_viewer.h"

#include "git/diff/diff_content.h"
#include "git/viewer/view/diff_list.h"
#include "platform/style/view/style.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/segmented_picker.h"

#include <QHBoxLayout>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTextDocument>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int toolbarHorizontal = 12;
constexpr int toolbarVertical = 6;
constexpr int pickerWidth = 220;
constexpr int rawPadding = 12;
constexpr int textSize = 12;

/// A text that is no diff, as it stands.
class RawDiffText final : public QPlainTextEdit
{
public:
    explicit RawDiffText(QWidget* parent) : QPlainTextEdit(parent)
    {
        setReadOnly(true);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setLineWrapMode(NoWrap);
        setFrameShape(NoFrame);
        setFont(style::monospaced(textSize));
        document()->setDocumentMargin(rawPadding);
        setAccessibleName(DiffViewer::tr("Diff"));
    }

protected:
    /// The toolkit would turn no-break spaces into blanks.
    QMimeData* createMimeDataFromSelection() const override
    {
        auto* copied = new QMimeData;
        copied->setText(textCursor().selectedText().replace(QChar::ParagraphSeparator, u'\n'));
        return copied;
    }
};

} // namespace

DiffViewer::DiffViewer(QWidget* parent) : QWidget(parent)
{
    QWidget* const toolbar = makeToolbar();
    noChanges_ = new TextLabel(tr("No changes"), style::monospaced(textSize), Tint::secondary());
    static_cast<TextLabel*>(noChanges_)->setAlignment(Qt::AlignCenter);
    noChanges_->setAutoFillBackground(true);
    noChanges_->setBackgroundRole(QPalette::Base);
    rawText_ = new RawDiffText(this);
    list_ = new DiffList(
        [this](qsizetype index) {
            const DiffFile& file = list_->diffLayout().files()[index];
            FileBlock block{file, mode_,           collapsedHunks_, [this](const QUuid& hunk) { toggleHunk(hunk); },
                            {},   hunkActionLabel_};
            if (onHunkAction_) {
                block.onHunkAction = [act = onHunkAction_, file](qsizetype hunk) { act(file, hunk); };
            }
            return block;
        },
        this);
    content_ = new QStackedWidget(this);
    content_->addWidget(noChanges_);
    content_->addWidget(rawText_);
    content_->addWidget(list_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(toolbar);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(content_, 1);
    evaluate();
}

DiffViewer::~DiffViewer() = default;

QWidget* DiffViewer::makeToolbar()
{
    auto* toolbar = new QWidget(this);
    QStringList labels;
    for (const DiffViewMode mode : allDiffViewModes) {
        labels.append(label(mode));
    }
    picker_ = new SegmentedPicker(labels, tr("Form of the diff"), toolbar);
    picker_->setFixedWidth(pickerWidth);
    connect(picker_, &SegmentedPicker::selectionChanged, this,
            [this](int index) { setMode(allDiffViewModes[std::size_t(index)]); });
    summary_ = new TextLabel({}, style::monospaced(style::typeSize::caption), Tint::secondary(), toolbar);
    summary_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* row = new QHBoxLayout(toolbar);
    row->setContentsMargins(toolbarHorizontal, toolbarVertical, toolbarHorizontal, toolbarVertical);
    row->addWidget(picker_);
    row->addStretch();
    row->addWidget(summary_);
    return toolbar;
}

void DiffViewer::setDiffText(const QString& text)
{
    if (text != diffText_) {
        diffText_ = text;
        evaluate();
    }
}

void DiffViewer::setHunkAction(const QString& label, HunkAction action)
{
    hunkActionLabel_ = label;
    onHunkAction_ = std::move(action);
    list_->updateBlocks();
}

void DiffViewer::setMode(DiffViewMode mode)
{
    if (mode != mode_) {
        mode_ = mode;
        picker_->setSelectedIndex(static_cast<int>(mode));
        evaluate();
    }
}

void DiffViewer::toggleHunk(const QUuid& hunk)
{
    if (!collapsedHunks_.remove(hunk)) {
        collapsedHunks_.insert(hunk);
    }
    const QList<DiffFile>& files = list_->diffLayout().files();
    for (qsizetype file = 0; file < files.size(); ++file) {
        for (qsizetype index = 0; index < files[file].hunks.size(); ++index) {
            if (files[file].hunks[index].id == hunk) {
                list_->setCollapsed(file, index, collapsedHunks_.contains(hunk));
                return;
            }
        }
    }
}

QString DiffViewer::filesSummary() const
{
    return kelm::filesSummary(list_->diffLayout().files());
}

void DiffViewer::evaluate()
{
    DiffContent content = DiffContent::of(diffText_);
    rawText_->setPlainText(content.state == DiffContent::State::rawText ? diffText_ : QString());
    if (content_->currentWidget() != list_) {
        // A page that has not been shown yet has no width of its own, and lines would be cut into rows twice.
        list_->resize(content_->size());
    }
    list_->setFiles(std::move(content.files), mode_);
    summary_->setText(filesSummary());
    switch (content.state) {
    case DiffContent::State::noChanges:
        content_->setCurrentWidget(noChanges_);
        break;
    case DiffContent::State::rawText:
        content_->setCurrentWidget(rawText_);
        break;
    case DiffContent::State::files:
        content_->setCurrentWidget(list_);
        break;
    }
}

} // namespace kelm
