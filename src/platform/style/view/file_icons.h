// The symbols of files and folders where the toolkit lists them.
#pragma once

#include <QAbstractFileIconProvider>

namespace kelm {

/// The program's own symbols for whatever a file dialog lists, instead of those that a desktop happens to have. Made on
/// the main thread; a dialog asks for icons on a thread of its own.
class FileIcons final : public QAbstractFileIconProvider
{
public:
    FileIcons();

    QIcon icon(IconType type) const override;
    QIcon icon(const QFileInfo& file) const override;

private:
    const QIcon folder_;
    const QIcon file_;
    const QIcon computer_;
    const QIcon drive_;
    const QIcon network_;
    const QIcon trash_;
};

} // namespace kelm
