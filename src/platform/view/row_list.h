// The list that the tabs of the source control panel show their rows in.
#pragma once

#include "platform/view/row.h"
#include "platform/view/row_model.h"

#include <QListView>
#include <QPointer>

namespace kelm {

class RowActions;

/// Rows in sections, made when they are on screen: a list of a hundred thousand opens as one of ten.
///
/// The row under the mouse shows its actions as buttons. So does the row that the keyboard is on: the up and down keys
/// go from row to row, Return and Space do what a click does, Right or Tab goes to the row's buttons, and the menu key
/// and Shift+F10 offer the same and what else a row has. Rows that can be clicked stand out while the mouse is over
/// them.
///
/// One gesture does one thing. A row that has come under the pointer because the rows were made anew takes no press
/// until the pointer moves, and a key that is held down presses once.
class RowList final : public QListView
{
    Q_OBJECT

public:
    /// `rowHeight` is in points.
    explicit RowList(int rowHeight, QWidget* parent = nullptr);
    ~RowList() override;

    /// Shows other rows. The keyboard stays on the row with the same key, or failing that at the same place of its
    /// section; the scroll position stays.
    void setSections(QList<RowSection> sections);
    /// What stands in the middle while there is no row.
    void setPlaceholder(const QString& text);
    /// Whether rows may have heights and editors of their own, which costs a look at every row.
    void setHasEditors(bool hasEditors);

    const RowModel& rows() const { return model_; }
    int rowHeight() const { return rowHeight_; }

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void openMenu(int item, const QPoint& globalPlace);
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    bool focusNextPrevChild(bool next) override;

private:
    class Delegate;

    /// The current row's place and key, before the rows are made anew.
    struct Kept
    {
        RowModel::Place place;
        QString key;
    };
    std::optional<Kept> keptRow() const;
    void restore(const Kept& kept);
    void makeEditors();
    /// What tells an item from the others when the rows are made anew; absent where there is no row.
    std::optional<std::pair<qsizetype, QString>> identityOf(int item) const;
    void notePointerMoved(QPoint globalPlace);
    /// Whether the rows' buttons take presses of the mouse.
    void takeMouse(bool takes);
    /// The item of a row, or -1 where there is none.
    int rowUnder(const QPoint& place) const;
    bool isUsable(int item) const;
    void updateActions();
    void showActions(RowActions& strip, int item);
    void click(int item);
    int trailingSpace(int item) const;
    void focusActions();

    int rowHeight_;
    bool hasEditors_ = false;
    QString placeholder_;
    RowModel model_;
    RowActions* hoveredActions_;
    RowActions* focusedActions_;
    /// Where the mouse is, in the viewport; absent while it is elsewhere.
    std::optional<QPoint> pointer_;
    /// Where the pointer is, on the screen, since another row has come under it.
    std::optional<QPoint> slidUnder_;
    /// Where the left button went down, while it may still become a drag.
    std::optional<QPoint> pressedAt_;
    int hoveredItem_ = -1;
    int focusedItem_ = -1;
    /// Whether the last touch was by key: then the current row is marked.
    bool isByKey_ = false;
};

} // namespace kelm
