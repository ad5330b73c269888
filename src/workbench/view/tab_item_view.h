// One tab of the strip above the editor.
#pragma once

#include "app/document/document.h"
#include "editor/themes/theme_manager.h"
#include "platform/style/view/tint.h"

#include <QKeySequence>
#include <QVariantAnimation>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QMenu;

namespace kelm {

class PlainButton;
class Workspace;

/// The colour that stands for a language on its chip.
Tint languageTint(Language language);

/// What a tab calls.
struct TabCallbacks
{
    std::function<void()> onSelect;
    std::function<void()> onClose;
    std::function<void()> onCloseOthers;
    std::function<void()> onCloseAll;
    /// The keyboard is to go to the tab so many places on.
    std::function<void(int)> onStep = {};
};

/// A document's chip, title, dot of unsaved edits and close button. A click anywhere selects it; the middle button
/// closes it. It can be dragged to other programs as its file.
class TabItemView final : public QWidget
{
    Q_OBJECT

public:
    TabItemView(std::shared_ptr<Document> document, bool isSelected, TabCallbacks callbacks, ThemeManager& themeManager,
                Workspace& workspace, QWidget* parent = nullptr);

    const std::shared_ptr<Document>& document() const { return document_; }
    bool isSelected() const { return isSelected_; }
    void setSelected(bool isSelected);
    /// The key that goes to this tab, or none.
    void setKey(const QKeySequence& key);
    bool isHovered() const { return isHovered_; }
    PlainButton& closeButton() { return *closeButton_; }
    /// What carries the grounds of a hovered and of a selected tab from 0 to 1 and back; for tests.
    const QVariantAnimation& hoverAnimation() const { return hover_; }
    const QVariantAnimation& selectionAnimation() const { return selection_; }
    /// Selects the tab, as a click does.
    Q_INVOKABLE void press();
    /// Fills a menu with what can be done with the tab.
    void fillContextMenu(QMenu& menu);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QFont titleFont() const;
    void setHovered(bool isHovered);
    void refreshDocument();
    void tellSelection();
    void refreshHelp();
    void updateCloseButton();
    void paintGround(QPainter& painter) const;
    void paintChip(QPainter& painter, const QRectF& chip) const;

    std::shared_ptr<Document> document_;
    ThemeManager& themeManager_;
    Workspace& workspace_;
    TabCallbacks callbacks_;
    PlainButton* closeButton_;
    QVariantAnimation hover_;
    QVariantAnimation selection_;
    QKeySequence key_;
    bool isSelected_;
    bool isHovered_ = false;
    /// Where the left button went down, while it may still become a drag.
    std::optional<QPoint> pressedAt_;
    bool isMiddlePressed_ = false;
};

} // namespace kelm
