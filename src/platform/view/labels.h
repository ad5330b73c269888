// Text and symbols that only show.
#pragma once

#include "platform/style/view/tint.h"

#include <QLabel>

#include <array>
#include <memory>

namespace kelm {

/// One line of plain text in a tint, which follows the appearance. Text that finds no room is cut with an ellipsis and
/// then shown whole as the help text.
class TextLabel : public QWidget
{
    Q_OBJECT

public:
    TextLabel(const QString& text, const QFont& font, const Tint& tint, QWidget* parent = nullptr);

    void setText(const QString& text);
    const QString& text() const { return text_; }
    void setTint(const Tint& tint);
    void setElideMode(Qt::TextElideMode mode);
    void setAlignment(Qt::Alignment alignment);
    /// A label that gives way may shrink to a few letters; one that does not keeps room for its whole text.
    void setGivesWay(bool givesWay);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void updateHelp();
    int textWidth() const;

    QString text_;
    Tint tint_;
    Qt::TextElideMode elideMode_ = Qt::ElideRight;
    Qt::Alignment alignment_ = Qt::AlignLeft | Qt::AlignVCenter;
    bool givesWay_ = true;
};

/// Several lines of plain text in a tint, wrapped at words, and within a word that is wider than the label. A text is
/// laid out once for a width: that costs about a millisecond for a thousand letters.
class WrappedLabel : public QLabel
{
    Q_OBJECT

public:
    WrappedLabel(const QString& text, const QFont& font, const Tint& tint, QWidget* parent = nullptr);
    ~WrappedLabel() override;

    void setTint(const Tint& tint);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The text in lines of a width.
    struct Lines;

    void refreshTint();
    /// Whether each laying out counts.
    bool isLong() const;
    /// Breaks the text into lines of a width, unless they are among those of the last times.
    const Lines& layOut(int width) const;
    bool isLaidOut(const std::unique_ptr<Lines>& lines, int width) const;

    Tint tint_;
    /// The latest first. A column is tried with a scroll bar and without one, again and again.
    mutable std::array<std::unique_ptr<Lines>, 2> lines_;
};

/// A symbol in a tint, centred in its place.
class SymbolLabel : public QWidget
{
    Q_OBJECT

public:
    SymbolLabel(QString symbol, int size, const Tint& tint, QWidget* parent = nullptr);

    void setSymbol(const QString& symbol);
    void setTint(const Tint& tint);
    QSize sizeHint() const override { return {size_, size_}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
    int size_;
    Tint tint_;
};

} // namespace kelm
