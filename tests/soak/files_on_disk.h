// What opening and saving must come to.
#pragma once

#include "soak/world.h"

namespace kelm::soak {

/// The text that a file of these bytes is read as; absent when it is no UTF-8. A byte-order mark is a part of it.
std::optional<QString> textOf(const QByteArray& bytes);
/// The bytes that a text is saved as.
QByteArray bytesOf(const QString& text);

/// Tells the model that the file was asked for: its tab is shown, or made when the file can be read.
void expectOpened(World& world, const QUrl& url);
/// Tells the model that the document was saved where it belongs, which fails without a folder for it.
bool expectSaved(World& world, ShadowDocument& document);

/// Waits until the state has looked at what was changed on disk, and tells the model: documents that are not modified
/// have the new texts.
void followDisk(World& world);

/// Some file of the project that is there now, links included.
QUrl someFile(World& world);

} // namespace kelm::soak
