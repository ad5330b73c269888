// The counts of a text that the status bar shows.
#pragma once

#include <QObject>
#include <QStringView>

namespace kelm {

class Document;

/// The pieces that `text` has between newlines, each of the two units of a CR LF pair being one; 1 for an empty text.
qsizetype newlineSeparatedCount(QStringView text);

/// The pieces between white space and newlines that are not empty.
qsizetype wordCount(QStringView text);

/// Keeps the number of a document's lines. A text of ordinary size is counted at once; a large one in slices, between
/// which keys come through, once it has been at rest for a moment, and shows its last number until then.
class LineCounter final : public QObject
{
    Q_OBJECT

public:
    explicit LineCounter(Document& document, QObject* parent = nullptr);

    qsizetype count() const { return count_; }

Q_SIGNALS:
    void countChanged();

private:
    void refreshContent();
    void countSlice();
    void stopTimer();
    void setCount(qsizetype count);

    Document& document_;
    qsizetype count_ = 1;
    qsizetype begun_ = 1;
    qsizetype position_ = 0;
    int timer_ = 0;

protected:
    void timerEvent(QTimerEvent* event) override;
};

} // namespace kelm
