// A text whose units stand in stretches.
#pragma once

#include <QStringView>

namespace kelm {

/// Shows a text of UTF-16 units in the stretches in which it lies, so that nothing of it is copied. The text stays as
/// it is while it is read, on one thread at a time.
class UnitSource
{
public:
    struct Stretch
    {
        qsizetype start = 0;
        QStringView units;
    };

    virtual ~UnitSource() = default;

    virtual qsizetype length() const = 0;
    /// The stretch that holds the unit at `offset`, which is within the text. It may end anywhere, also between a pair
    /// of surrogates.
    virtual Stretch stretchAt(qsizetype offset) const = 0;
};

/// A text in one piece.
class ViewSource final : public UnitSource
{
public:
    explicit ViewSource(QStringView text) : text_(text) {}

    qsizetype length() const override { return text_.size(); }
    Stretch stretchAt(qsizetype /*offset*/) const override { return {0, text_}; }

private:
    QStringView text_;
};

} // namespace kelm
