#include "platform/style/view/file_icons.h"

#include "platform/style/view/standard_icons.h"

#include <QFileInfo>

namespace kelm {

FileIcons::FileIcons()
    : folder_(standardSymbol(QStyle::SP_DirIcon, nullptr)),
      file_(standardSymbol(QStyle::SP_FileIcon, nullptr)),
      computer_(standardSymbol(QStyle::SP_ComputerIcon, nullptr)),
      drive_(standardSymbol(QStyle::SP_DriveHDIcon, nullptr)),
      network_(standardSymbol(QStyle::SP_DriveNetIcon, nullptr)),
      trash_(standardSymbol(QStyle::SP_TrashIcon, nullptr))
{}

QIcon FileIcons::icon(IconType type) const
{
    switch (type) {
    case Computer:
    case Desktop:
        return computer_;
    case Trashcan:
        return trash_;
    case Network:
        return network_;
    case Drive:
        return drive_;
    case Folder:
        return folder_;
    case File:
        break;
    }
    return file_;
}

QIcon FileIcons::icon(const QFileInfo& file) const
{
    if (file.isRoot()) {
        return drive_;
    }
    return file.isDir() ? folder_ : file_;
}

} // namespace kelm
