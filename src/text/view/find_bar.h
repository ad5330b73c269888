// The find bar of a text view.
#pragma once

#include "text/find/find_request.h"
#include "text/find/find_session.h"
#include "text/find/search_engine.h"
#include "text/view/searched_text.h"

#include <QFrame>

#include <functional>
#include <optional>

class QGridLayout;
class QLabel;
class QLineEdit;
class QToolButton;

namespace kelm {

class TextView;

/// Find and replace over the top of a text view. Typing shows all matches and the one nearest behind the caret without
/// moving the caret; Enter and Shift-Enter step from match to match and select them; Escape, in the bar or in the text,
/// closes it.
class FindBar final : public QFrame
{
    Q_OBJECT

public:
    explicit FindBar(TextView& view);

    SearchEngine& engine() { return engine_; }

    /// Shows the bar with the selected text, if it is within a line, as the text looked for.
    void open(bool withReplace);
    /// Shows the bar with what was typed and chosen elsewhere.
    void open(const FindRequest& request);
    void close();
    /// Steps to a match and selects it, also when the bar is not shown.
    void findNext();
    void findPrevious();
    /// Looks for the selected text from now on.
    void useSelection();
    /// Whether a search goes on and follows the text: while the bar is open, and until a step that takes long has
    /// ended.
    bool isSearching() const { return session_.isRunning(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    /// Tab goes round the bar's fields and buttons: behind the bar is a text in which it would type.
    bool focusNextPrevChild(bool next) override;

private:
    QToolButton* makeButton(const QString& text, const QString& help);
    QToolButton* makeToggle(const QString& text, const QString& help);
    void buildRows();
    /// Shares out a width among what can give way: first the status becomes narrower, then the fields, and then the
    /// buttons go below their fields.
    void fitRows(int width);
    void setNarrow(bool isNarrow);
    void readSelection();
    /// Selects what `find` finds.
    void step(const std::function<std::optional<TextRange>()>& find);
    void restart();
    void select(std::optional<TextRange> match);
    void replaceCurrent();
    void replaceAll();
    void putInAll(const ReplaceAllResult& result);
    void replace(const ReplaceAllResult& result);
    void showState();
    /// Cut where it finds no room, and then whole as the help text.
    void showStatus(const QString& text);
    void showHighlights();
    void placeOverView();
    bool handleFieldKey(QObject* field, const QKeyEvent& key);

    TextView& view_;
    SearchEngine engine_;
    SearchedText searched_;
    FindSession session_;
    QLineEdit* findField_;
    QLineEdit* replaceField_;
    QLabel* status_;
    QToolButton* caseToggle_;
    QToolButton* wordToggle_;
    QToolButton* patternToggle_;
    QWidget* replaceRow_;
    /// What stands behind the field of each row, or below it where the bar is narrow.
    QWidget* options_;
    QWidget* replaceButtons_;
    QToolButton* done_ = nullptr;
    QGridLayout* findRow_ = nullptr;
    QGridLayout* replaceGrid_ = nullptr;
    bool isNarrow_ = false;
    /// The width that the rows were last fitted to: each scrolling asks for it again.
    int fittedWidth_ = -1;
    /// Where in the whole text the caret stood when the text looked for was last typed.
    qsizetype origin_ = 0;
};

} // namespace kelm
