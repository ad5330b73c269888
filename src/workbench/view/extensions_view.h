// The place of extensions, of which there are none.
#pragma once

#include <QWidget>

namespace kelm {

/// Says that extensions are yet to come; has no function.
class ExtensionsView final : public QWidget
{
    Q_OBJECT

public:
    explicit ExtensionsView(QWidget* parent = nullptr);
};

} // namespace kelm
