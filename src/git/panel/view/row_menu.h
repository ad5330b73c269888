// What the context menus of the panel's rows offer beside their buttons.
#pragma once

#include "platform/view/row.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace kelm {

struct GitFileStatus;

/// What is done with a file on this machine; either may be absent.
struct FileActions
{
    std::function<void(const QUrl& file)> open = {};
    std::function<void(const QUrl& file)> reveal = {};
};

/// Puts a text on the clipboard.
RowAction copyAction(const QString& help, const QString& text);

/// Opening, revealing and copying the path of a changed file. One that was deleted cannot be opened.
QList<RowAction> fileMenu(const QUrl& file, bool isThere, const FileActions& actions);

/// Where a changed file is, in a working tree.
QUrl fileOf(const GitFileStatus& status, const QUrl& workingTree);

} // namespace kelm
