#include "platform/desktop/panel_places.h"

#include "platform/files/native_path.h"
#include "platform/files/user_defaults.h"

#include <QDir>

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

QString keyOf(PanelKind kind)
{
    switch (kind) {
    case PanelKind::open:
        return u"panelFolderOpen"_s;
    case PanelKind::project:
        return u"panelFolderProject"_s;
    case PanelKind::clone:
        return u"panelFolderClone"_s;
    case PanelKind::save:
        return u"panelFolderSave"_s;
    }
    return {};
}

/// The folder, or the nearest one around it, that a dialog of the toolkit can show.
QString showable(QString folder)
{
    while (folder.size() > 1 && folder.endsWith(u'/')) {
        folder.chop(1);
    }
    while (holdsRawBytes(folder)) {
        folder.truncate(std::max(folder.lastIndexOf(u'/'), qsizetype(0)));
    }
    return folder.isEmpty() ? u"/"_s : folder;
}

} // namespace

QString PanelPlaces::start(PanelKind kind, const QStringList& wanted) const
{
    QStringList folders = wanted;
    if (const std::optional<QByteArray> last = userDefaults_.data(keyOf(kind))) {
        folders << pathOfNative(*last);
    }
    for (const QString& folder : folders) {
        if (QDir::isAbsolutePath(folder) && isFolder(folder)) {
            return showable(folder);
        }
    }
    return QDir::homePath();
}

void PanelPlaces::noteEnd(PanelKind kind, const QString& folder)
{
    userDefaults_.setData(keyOf(kind), nativePath(folder));
}

} // namespace kelm
