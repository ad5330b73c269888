#include "learning/view/lesson_section.h"

#include "platform/text/grapheme_boundaries.h"
#include "platform/view/divider.h"

#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int padding = 14;
constexpr int spacing = 8;
constexpr int symbolSpacing = 6;
constexpr int headingSize = 10;

} // namespace

QString shownPart(const QString& text, qsizetype most)
{
    if (text.size() <= most) {
        return text;
    }
    return text.first(graphemeCut(text, most)) + u'…';
}

LessonSection::LessonSection(Place place, const Tint& headingTint, QWidget* parent) : QWidget(parent)
{
    auto* frame = new QVBoxLayout(this);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->setSpacing(0);
    column_ = new QVBoxLayout;
    column_->setContentsMargins(padding, padding - 2, padding, padding - 2);
    column_->setSpacing(spacing);
    if (place == Place::behindAnother) {
        frame->addWidget(new Divider(Qt::Horizontal, this));
        heading_ = new TextLabel({}, style::interfaceFont(headingSize, QFont::DemiBold), headingTint, this);
        column_->addWidget(heading_);
    }
    frame->addLayout(column_);
}

void LessonSection::setHeading(const QString& heading)
{
    heading_->setText(heading);
}

TextLabel* LessonSection::addSymbolLine(const QString& symbol, int symbolSize, const Tint& symbolTint,
                                        const QFont& font, const Tint& tint)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(symbolSpacing);
    row->addWidget(new SymbolLabel(symbol, symbolSize, symbolTint, this));
    auto* label = new TextLabel({}, font, tint, this);
    row->addWidget(label, 1);
    column_->addLayout(row);
    return label;
}

WrappedLabel* LessonSection::addText(int size, const Tint& tint, QFont::Weight weight)
{
    auto* label = new WrappedLabel({}, style::interfaceFont(size, weight), tint, this);
    column_->addWidget(label);
    return label;
}

} // namespace kelm
