#include "git/viewer/view/diff_viewer.h"

#include "git/diff/diff_content.h"
#include "git/viewer/view/diff_find_line.h"
#include "git/viewer/view/diff_list.h"
#include "platform/style/view/style.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/segmented_picker.h"

#include <QHBoxLayout>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QShortcut>
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
    noChanges_->setAlignment(Qt::AlignCenter);
    noChanges_->setAutoFillBackground(true);
    noChanges_->setBackgroundRole(QPalette::Base);
    rawText_ = new RawDiffText(this);
    list_ = new DiffList([this](qsizetype file) { return blockOf(file); }, this);
    findLine_ = new DiffFindLine(
        *list_, [this](const QUuid& hunk) { toggleHunk(hunk); }, this);
    findLine_->hide();
    connect(findLine_, &DiffFindLine::closed, this, &DiffViewer::hideFindLine);
    content_ = new QStackedWidget(this);
    content_->addWidget(noChanges_);
    content_->addWidget(rawText_);
    content_->addWidget(list_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(toolbar);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(findLine_);
    column->addWidget(content_, 1);
    addShortcuts();
    evaluate();
}

DiffViewer::~DiffViewer() = default;

FileBlock DiffViewer::blockOf(qsizetype index)
{
    const DiffFile& file = list_->diffLayout().files()[index];
    FileBlock block{file, mode_, collapsedHunks_, [this](const QUuid& hunk) { toggleHunk(hunk); }, {}, hunkActionLabel_,
                    {}};
    if (onHunkAction_) {
        // What is still shown while another text is read may be true no more.
        block.onHunkAction = [this, act = onHunkAction_, file](qsizetype hunk) {
            if (!isReading()) {
                act(file, hunk);
            }
        };
    }
    if (hindrance_) {
        block.hindranceOf = [tell = hindrance_, file](qsizetype hunk) { return tell(file, hunk); };
    }
    return block;
}

void DiffViewer::addShortcuts()
{
    const auto add = [this](const QKeySequence& keys, auto run) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, run);
    };
    add(QKeySequence::Find, [this] { showFindLine(); });
    add(Qt::Key_F7, [this] { list_->goToHunk(true); });
    add(Qt::SHIFT | Qt::Key_F7, [this] { list_->goToHunk(false); });
    add(Qt::CTRL | Qt::Key_PageDown, [this] { list_->goToFile(true); });
    add(Qt::CTRL | Qt::Key_PageUp, [this] { list_->goToFile(false); });
    add(Qt::CTRL | Qt::Key_Return, [this] { list_->actOnHunk(); });
    add(Qt::Key_F3, [this] { findLine_->find(true); });
    add(Qt::SHIFT | Qt::Key_F3, [this] { findLine_->find(false); });
}

void DiffViewer::showFindLine()
{
    if (content_->currentWidget() != list_) {
        return;
    }
    findLine_->show();
    findLine_->takeKeyboard();
}

void DiffViewer::hideFindLine()
{
    findLine_->hide();
    list_->setFocus();
}

void DiffViewer::setEmptyText(const QString& text)
{
    emptyText_ = text;
    if (!isReading()) {
        noChanges_->setText(emptyText_.isEmpty() ? tr("No changes") : emptyText_);
    }
}

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

void DiffViewer::setHunkAction(const QString& label, HunkAction action, Hindrance hindrance)
{
    hindrance_ = std::move(hindrance);
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

/// A text taken apart and laid out, on the way from one thread to another.
struct DiffViewer::Reading
{
    QString text;
    DiffList::Frame frame;
    DiffContent::State state = DiffContent::State::noChanges;
    DiffLayout layout;
    QString summary;

    /// Has the lines of long hunks find those that they face, which would hold up the first picture.
    void prepareLongHunks(qsizetype file) const
    {
        constexpr qsizetype many = 10'000;
        for (qsizetype hunk = 0; hunk < layout.files()[file].hunks.size(); ++hunk) {
            if (layout.entryCount(file, hunk) > many) {
                layout.lines(file, hunk, 0);
            }
        }
    }

    void read()
    {
        DiffContent content = DiffContent::of(text);
        state = content.state;
        summary = kelm::filesSummary(content.files);
        layout = DiffLayout(std::move(content.files), frame.mode, frame.metrics, frame.columns);
        for (qsizetype file = 0; file < layout.files().size(); ++file) {
            prepareLongHunks(file);
        }
    }
};

void DiffViewer::evaluate()
{
    if (content_->currentWidget() != list_) {
        // A page that has not been shown yet has no width of its own, and lines would be cut into rows twice.
        list_->resize(content_->size());
    }
    auto reading = std::make_shared<Reading>(Reading{diffText_, list_->frameOf(mode_), {}, {}, {}});
    if (diffText_.size() <= longestAtOnce) {
        reading_.stop();
        reading->read();
        take(reading);
        return;
    }
    if (content_->currentWidget() != list_) {
        noChanges_->setText(tr("Reading the diff…"));
        content_->setCurrentWidget(noChanges_);
    }
    reading_.start([this, reading](const BackgroundTask::StopFlag&) {
        reading->read();
        return [this, reading] { take(reading); };
    });
}

void DiffViewer::take(const std::shared_ptr<Reading>& reading)
{
    noChanges_->setText(emptyText_.isEmpty() ? tr("No changes") : emptyText_);
    rawText_->setPlainText(reading->state == DiffContent::State::rawText ? diffText_ : QString());
    findLine_->stop();
    list_->setDiffLayout(std::move(reading->layout));
    summary_->setText(reading->summary);
    switch (reading->state) {
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
    Q_EMIT shown();
}

} // namespace kelm
