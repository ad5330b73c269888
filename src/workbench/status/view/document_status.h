// The status bar's view of one document.
#pragma once

#include "app/document/document.h"
#include "platform/events/background_task.h"

#include <QWidget>

#include <memory>

class QMenu;

namespace kelm {

class StatusBarItem;
class StatusBarMenu;

/// Language, encoding and line ending, each a menu. Encoding and line ending are labels: they convert nothing.
class DocumentLeftStatus final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentLeftStatus(std::shared_ptr<Document> document, QWidget* parent = nullptr);

    StatusBarMenu& languageMenu() { return *language_; }
    StatusBarMenu& encodingMenu() { return *encoding_; }
    StatusBarMenu& lineEndingMenu() { return *lineEnding_; }

private:
    void refreshDocument();

    std::shared_ptr<Document> document_;
    StatusBarMenu* language_;
    StatusBarMenu* encoding_;
    StatusBarMenu* lineEnding_;
};

/// The caret's place, the extent of the selection, the counts of the text, and the indent style, a label as well.
class DocumentRightStatus final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentRightStatus(std::shared_ptr<Document> document, QWidget* parent = nullptr);

    StatusBarItem& position() { return *position_; }
    StatusBarItem& selection() { return *selection_; }
    StatusBarMenu& linesMenu() { return *lines_; }
    StatusBarMenu& indentMenu() { return *indent_; }

private:
    void refreshPosition();
    void refreshSelection();
    void refreshLineCount();
    void refreshIndentStyle();
    void fillCounts(QMenu& menu);

    std::shared_ptr<Document> document_;
    StatusBarItem* position_;
    StatusBarItem* selection_;
    StatusBarMenu* lines_;
    StatusBarMenu* indent_;
    qsizetype lineCount_ = -1;
    BackgroundTask counting_;
};

} // namespace kelm
