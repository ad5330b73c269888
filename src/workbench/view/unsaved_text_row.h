// One line of the list of unsaved texts.
#pragma once

#include "app/recovery/recovery_folder.h"

#include <QString>
#include <QWidget>

namespace kelm {

class PlainButton;
class TextLabel;

/// How long ago something was, such as "5 minutes ago"; both times in milliseconds since 1970.
QString ageText(qint64 time, qint64 now);

/// The title of an unsaved text, where its file is, how old it is and its first words, with "Open" and "Delete".
///
/// When its text has gone, by one of these or otherwise, the row stays in its place and says so, without a button: what
/// is pressed a second time there must not be another row's.
class UnsavedTextRow final : public QWidget
{
    Q_OBJECT

public:
    UnsavedTextRow(const UnsavedText& text, qint64 now, QWidget* parent = nullptr);

    const QString& id() const { return id_; }
    bool hasGone() const { return hasGone_; }
    /// Its text is no longer there to be opened.
    void setGone();

    PlainButton* openButton() const { return open_; }
    PlainButton* deleteButton() const { return delete_; }
    /// Its lines as they are read, from top to bottom.
    QStringList lines() const;

Q_SIGNALS:
    void opened();
    void deleted();
    /// The keyboard has left a row whose text has gone.
    void left();

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    /// Goes, and says why.
    void go(const QString& reason);

    const QString id_;
    TextLabel* title_;
    TextLabel* place_;
    TextLabel* words_;
    PlainButton* open_;
    PlainButton* delete_;
    bool hasGone_ = false;
};

} // namespace kelm
