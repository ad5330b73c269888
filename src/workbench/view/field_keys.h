// What the keys of fields must not do.
#pragma once

#include <QObject>

namespace kelm {

/// Keeps the fields of all windows from erasing text by keys that do not say so, such as Ctrl+K; the text views do
/// that by themselves. Such a key does nothing, and types nothing.
class FieldKeys final : public QObject
{
public:
    explicit FieldKeys(QObject* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace kelm
