// One line of the list of recent files.
#pragma once

#include <QAbstractButton>
#include <QUrl>

namespace kelm {

/// The name of a file and, standing back, the folder that it is in.
class RecentFileButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit RecentFileButton(const QUrl& url, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    QString name_;
    QString folder_;
};

} // namespace kelm
