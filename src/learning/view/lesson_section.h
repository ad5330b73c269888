// One section of the lesson panel.
#pragma once

#include "platform/style/view/style.h"
#include "platform/view/labels.h"

#include <QWidget>

class QVBoxLayout;

namespace kelm {

namespace lessonSizes {
inline constexpr int text = 12;
inline constexpr int note = 11;
} // namespace lessonSizes

/// As much of a text as is shown of one that can be of any length: its beginning, with an ellipsis behind what was cut.
QString shownPart(const QString& text, qsizetype most);

/// A heading with what stands below it. The divider before it comes and goes with it.
class LessonSection : public QWidget
{
    Q_OBJECT

public:
    /// The first section has neither heading nor divider.
    enum class Place { first, behindAnother };

    LessonSection(Place place, const Tint& headingTint, QWidget* parent = nullptr);

    void setHeading(const QString& heading);
    /// Where the section's parts are added.
    QVBoxLayout& column() { return *column_; }

    /// A row of a symbol and a line of text, which is added to the section.
    TextLabel* addSymbolLine(const QString& symbol, int symbolSize, const Tint& symbolTint, const QFont& font,
                             const Tint& tint);
    /// A text that is wrapped, likewise.
    WrappedLabel* addText(int size, const Tint& tint, QFont::Weight weight = QFont::Normal);

private:
    TextLabel* heading_ = nullptr;
    QVBoxLayout* column_;
};

} // namespace kelm
