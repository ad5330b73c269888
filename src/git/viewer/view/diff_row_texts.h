// The text of the rows of lines that are on screen.
#pragma once

#include "git/diff/line_cells.h"

#include <QFont>
#include <QTextLayout>

#include <memory>
#include <unordered_map>

namespace kelm {

/// One row of a line, ready to be drawn. Offsets are UTF-16 units from the row's start, places are from its left edge.
class DiffRowText
{
public:
    /// A row that comes out wider than `width` is drawn narrower, so that nothing of it is lost.
    DiffRowText(QStringView row, const QFont& font, qreal width);

    qreal width() const { return xOf(qsizetype(drawn_.places.size()) - 1); }
    qreal xOf(qsizetype unit) const;
    /// The offset between two characters that is nearest to `x`.
    qsizetype unitAt(qreal x) const;
    /// Draws it with the painter's pen, `baseline` being the left end of its base line.
    void draw(QPainter& painter, const QPointF& baseline) const;

private:
    QString row_;
    DrawnText drawn_;
    QTextLayout layout_;
    qreal scale_ = 1;
};

/// Makes rows when they are asked for and keeps those of some screens. Each is named by where the line's text begins,
/// which has to live and stay as long as it is in here.
class DiffRowTexts
{
public:
    /// The font of all rows; a row of it has `columns(width)` cells in a width.
    void setFont(const QFont& font);
    const QFont& font() const { return font_; }
    qreal cellWidth() const { return cellWidth_; }
    qsizetype columns(qreal width) const;

    const LineRows& rows(QStringView line, qsizetype columns);
    /// A row of a line that is cut at so many columns.
    const DiffRowText& row(QStringView line, qsizetype row, qsizetype columns, qreal width);
    /// To be called when a line or a width changes.
    void clear();

private:
    struct Key
    {
        const QChar* line = nullptr;
        qsizetype row = 0;
        bool operator==(const Key&) const = default;
    };
    struct Hash
    {
        std::size_t operator()(const Key& key) const { return qHashMulti(0, key.line, key.row); }
    };

    QFont font_;
    qreal cellWidth_ = 1;
    std::unordered_map<const QChar*, LineRows> lines_;
    std::unordered_map<Key, std::unique_ptr<DiffRowText>, Hash> texts_;
};

} // namespace kelm
