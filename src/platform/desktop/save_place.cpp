#include "platform/desktop/save_place.h"

#include "platform/files/native_path.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

bool mayWrite(const QString& path)
{
    return ::faccessat(AT_FDCWD, nativePath(path).constData(), W_OK, AT_EACCESS) == 0;
}

QString nameOf(const QString& path)
{
    const QString name = shownPath(path.sliced(path.lastIndexOf(u'/') + 1));
    return name.isEmpty() ? u"/"_s : name;
}

} // namespace

QString whyNotSaved(const QString& path)
{
    const QString folder = path.first(std::max(path.lastIndexOf(u'/'), qsizetype(0)));
    if (!isThere(folder + u'/')) {
        return isThere(folder) ? u"“%1” is not a folder."_s.arg(nameOf(folder))
                               : u"There is no folder “%1”."_s.arg(nameOf(folder));
    }
    if (isFolder(path)) {
        return u"“%1” is a folder."_s.arg(nameOf(path));
    }
    if (isThere(path)) {
        return mayWrite(path) ? QString() : u"You may not write “%1”."_s.arg(nameOf(path));
    }
    return mayWrite(folder + u'/') ? QString() : u"You may not save in “%1”."_s.arg(nameOf(folder));
}

} // namespace kelm
