// What one row of a list in the panel shows and does.
#pragma once

#include "platform/style/view/tint.h"

#include <QFont>
#include <QList>
#include <QString>
#include <QUrl>

#include <functional>

class QWidget;

namespace kelm {

/// A piece of text in a row's line. Line breaks in it are shown as blanks, and markup as it stands.
struct RowText
{
    QString text;
    QFont font;
    Tint tint = Tint::primary();
    Qt::TextElideMode elideMode = Qt::ElideRight;
    /// Whether the piece is cut when the line finds no room; the others keep their width.
    bool givesWay = true;
    /// The width that the piece asks for at least, in points.
    int leastWidth = 0;
};

/// Something that a row offers while the mouse is over it or the keyboard is on it.
struct RowAction
{
    /// The action's name, which is its help text.
    QString help;
    QString symbol;
    std::function<void()> run;
};

struct Row
{
    /// The symbol before the lines, or none.
    QString symbol = {};
    Tint symbolTint = Tint::secondary();
    QList<RowText> firstLine = {};
    QList<RowText> secondLine = {};
    /// The whole row in words: its help text, and what a screen reader says.
    QString help = {};
    /// What a click does, or nothing; `clickName` is its name in the context menu.
    std::function<void()> onClick = {};
    QString clickName = {};
    QList<RowAction> actions = {};
    /// What the context menu offers behind those.
    QList<RowAction> menu = {};
    /// The row's height in points where it is not that of the list.
    int height = 0;
    /// Makes the controls that stand in the row's place while it is edited.
    std::function<QWidget*(QWidget* parent)> makeEditor = {};
};

/// Rows under a common title. Rows are made when they are looked at, so a section costs nothing for its length.
struct RowSection
{
    /// Shown above the rows; empty for none.
    QString title;
    qsizetype count = 0;
    std::function<Row(qsizetype index)> row;
    /// What tells a row from the others when the list is made anew: the keyboard stays on the row of the same key.
    std::function<QString(qsizetype index)> key = {};
    /// The file as which a row can be dragged out; empty for one that has none.
    std::function<QUrl(qsizetype index)> file = {};
    bool isTitleUpperCase = false;
};

/// The type of rows, made once.
struct RowFonts
{
    QFont body;
    QFont caption;
    QFont monospaced;
    QFont smallMonospaced;
    /// Bold, of letters that mark a change and of the titles of sections.
    QFont mark;

    static const RowFonts& standard();
};

} // namespace kelm
