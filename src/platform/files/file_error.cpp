#include "platform/files/file_error.h"

#include "platform/files/native_path.h"

#include <array>
#include <cerrno>
#include <cstring>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

struct PlainReason
{
    int number;
    QLatin1String text;
};

constexpr std::array plainReasons{
    PlainReason{ENOENT, QLatin1String("it is not there")},
    PlainReason{ENOTDIR, QLatin1String("its folder is not there")},
    PlainReason{EACCES, QLatin1String("you have no permission for that")},
    PlainReason{EPERM, QLatin1String("you have no permission for that")},
    PlainReason{EISDIR, QLatin1String("it is a folder")},
    PlainReason{EINVAL, QLatin1String("it is no ordinary file")},
    PlainReason{ENOSPC, QLatin1String("the disk is full")},
    PlainReason{EDQUOT, QLatin1String("your share of the disk is used up")},
    PlainReason{EFBIG, QLatin1String("it is larger than files may be there")},
    PlainReason{EROFS, QLatin1String("nothing can be written to that disk")},
    PlainReason{ENAMETOOLONG, QLatin1String("its name is too long")},
    PlainReason{ELOOP, QLatin1String("its links lead in a circle")},
    PlainReason{EIO, QLatin1String("the disk does not work as it should")},
    PlainReason{EMFILE, QLatin1String("too many files are open")},
    PlainReason{ENFILE, QLatin1String("too many files are open")},
    PlainReason{ENOMEM, QLatin1String("it is too large for the memory")},
};

QString reasonOf(int number)
{
    for (const PlainReason& each : plainReasons) {
        if (each.number == number) {
            return each.text;
        }
    }
    return QString::fromLocal8Bit(std::strerror(number));
}

} // namespace

FileError systemError(const QString& path, int systemError)
{
    return {u"%1: %2"_s.arg(shownPath(path), QString::fromLocal8Bit(std::strerror(systemError))),
            reasonOf(systemError)};
}

FileError nullInPath(const QString& path)
{
    return {u"%1: The path holds a NUL."_s.arg(shownPath(path)).replace(QChar::Null, QChar::ReplacementCharacter),
            u"its name holds a NUL"_s};
}

} // namespace kelm
