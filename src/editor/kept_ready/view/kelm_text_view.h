// The code-aware text view.
#pragma once

#include "platform/events/scheduler.h"
#include "platform/process/log.h"
#include "text/view/text_view.h"

#include <QPointer>

#include <optional>

namespace kelm {

class KelmEditorContainer;

/// A text view with keys for code: brackets and quotes that close themselves, the partner of a bracket marked, a line
/// comment toggled, lines indented back and doubled, and the keys of completion, cursors and selections, which its
/// container's managers carry out. Without a container those keys do nothing. Kept ready: the program's window is made
/// of plain text views.
///
/// Its diagnostics go to standard output. Main thread only.
class KelmTextView : public TextView
{
public:
    KelmTextView(Scheduler& scheduler, Log& log, QWidget* parent = nullptr);

    QPointer<KelmEditorContainer> editorContainer;
    /// Carried for a later look; nothing is drawn from them yet.
    QColor currentLineHighlightColor = QColor::fromRgbF(0.2F, 0.2F, 0.2F, 0.3F);
    bool showIndentGuides = true;
    QColor indentGuideColor = QColor::fromRgbF(0.3F, 0.3F, 0.3F, 0.5F);
    int tabWidth = 4;

    /// The range that carries the mark of a matching bracket.
    std::optional<TextRange> matchingBracketRange() const { return matchingBracketRange_; }

    /// Tells that the view takes the keyboard.
    bool acceptsFirstResponder();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool runCommandKey(const QKeyEvent& event);
    bool runLineCommand(const QString& characters);
    void typePair(QKeyEvent* event, QChar closing);
    void triggerCompletion();
    void becomeFirstResponder(QFocusEvent* event);
    void resignFirstResponder(QFocusEvent* event);
    void mouseDown(const QMouseEvent& event);
    void noteWindow();
    void viewDidMoveToWindow(QWidget* window);

    void updateBracketMatching();
    void toggleComment();
    void indentLine();
    void decreaseIndent();
    void duplicateLine();
    TextRange selectedLines() const { return storage().lineRange(selectedRange()); }

    Scheduler& scheduler_;
    Log& log_;
    bool isFirstResponder_ = false;
    std::optional<TextRange> matchingBracketRange_;
    QPointer<QWidget> window_;
};

} // namespace kelm
