// A remote in its list.
#pragma once

#include "git/service/git_records.h"
#include "platform/view/row.h"

#include <QWidget>

#include <optional>

class QLineEdit;

namespace kelm {

struct RemoteRow
{
    GitRemote remote;
    std::function<void()> onRemove;
    std::function<void(const QString& url)> onSetURL;
    /// Present while the address is edited.
    std::optional<QString> editingURL = {};
    /// Says what `editingURL` is to be.
    std::function<void(const std::optional<QString>& url)> onEdit;

    Row content() const;
};

/// The controls of a remote whose address is edited: a field, "Save" and "Cancel". Return saves, Escape cancels.
class RemoteURLEditor final : public QWidget
{
    Q_OBJECT

public:
    RemoteURLEditor(const RemoteRow& row, QWidget* parent);

    QLineEdit& field() { return *field_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void save();
    void cancel();

    RemoteRow row_;
    QLineEdit* field_;
};

} // namespace kelm
