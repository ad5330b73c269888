#include "platform/style/view/standard_icons.h"

#include "platform/desktop/named_colors.h"
#include "platform/style/view/icons.h"

#include <QGuiApplication>
#include <QHash>
#include <QStyleOption>

#include <optional>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A symbol, and its colour where it has one of its own.
struct StandardSymbol
{
    QString name;
    std::optional<SystemColor> color = std::nullopt;
};

const QHash<int, StandardSymbol>& standardSymbols()
{
    using Color = SystemColor;
    static const QHash<int, StandardSymbol> symbols{
        {QStyle::SP_MessageBoxInformation, {u"info.circle"_s, Color::blue}},
        {QStyle::SP_MessageBoxQuestion, {u"questionmark.circle"_s, Color::blue}},
        {QStyle::SP_MessageBoxWarning, {u"exclamationmark.triangle.fill"_s, Color::orange}},
        {QStyle::SP_MessageBoxCritical, {u"xmark.circle.fill"_s, Color::red}},
        {QStyle::SP_FileDialogBack, {u"chevron.left"_s}},
        {QStyle::SP_FileDialogToParent, {u"arrow.up"_s}},
        {QStyle::SP_FileDialogNewFolder, {u"folder.badge.plus"_s}},
        {QStyle::SP_FileDialogListView, {u"list.bullet"_s}},
        {QStyle::SP_FileDialogDetailedView, {u"text.alignleft"_s}},
        {QStyle::SP_ArrowBack, {u"chevron.left"_s}},
        {QStyle::SP_ArrowForward, {u"chevron.right"_s}},
        {QStyle::SP_ArrowLeft, {u"chevron.left"_s}},
        {QStyle::SP_ArrowRight, {u"chevron.right"_s}},
        {QStyle::SP_ArrowUp, {u"arrow.up"_s}},
        {QStyle::SP_ArrowDown, {u"chevron.down"_s}},
        {QStyle::SP_DirIcon, {u"folder.fill"_s, Color::blue}},
        {QStyle::SP_DirClosedIcon, {u"folder.fill"_s, Color::blue}},
        {QStyle::SP_DirOpenIcon, {u"folder.fill"_s, Color::blue}},
        {QStyle::SP_DirLinkIcon, {u"folder"_s, Color::blue}},
        {QStyle::SP_DirHomeIcon, {u"folder"_s, Color::blue}},
        {QStyle::SP_FileIcon, {u"doc"_s, Color::gray}},
        {QStyle::SP_FileLinkIcon, {u"doc"_s, Color::gray}},
        {QStyle::SP_ComputerIcon, {u"desktopcomputer"_s, Color::gray}},
        {QStyle::SP_DesktopIcon, {u"desktopcomputer"_s, Color::gray}},
        {QStyle::SP_DriveHDIcon, {u"externaldrive"_s, Color::gray}},
        {QStyle::SP_DriveFDIcon, {u"externaldrive"_s, Color::gray}},
        {QStyle::SP_DriveCDIcon, {u"externaldrive"_s, Color::gray}},
        {QStyle::SP_DriveDVDIcon, {u"externaldrive"_s, Color::gray}},
        {QStyle::SP_DriveNetIcon, {u"network"_s, Color::gray}},
        {QStyle::SP_TrashIcon, {u"trash"_s}},
        {QStyle::SP_BrowserReload, {u"arrow.clockwise"_s}},
        {QStyle::SP_LineEditClearButton, {u"xmark.circle.fill"_s, Color::gray}},
        {QStyle::SP_TitleBarCloseButton, {u"xmark"_s}},
        {QStyle::SP_DockWidgetCloseButton, {u"xmark"_s}},
    };
    return symbols;
}

} // namespace

QIcon standardSymbol(QStyle::StandardPixmap picture, const QStyleOption* option)
{
    const auto found = standardSymbols().constFind(picture);
    if (found == standardSymbols().cend()) {
        return {};
    }
    // What points the way is turned around where one reads from the right.
    const Qt::LayoutDirection direction = option != nullptr ? option->direction : QGuiApplication::layoutDirection();
    const bool isMirrored = direction == Qt::RightToLeft;
    QString name = found->name;
    if (isMirrored && (picture == QStyle::SP_ArrowBack || picture == QStyle::SP_FileDialogBack)) {
        name = u"chevron.right"_s;
    } else if (isMirrored && picture == QStyle::SP_ArrowForward) {
        name = u"chevron.left"_s;
    }
    return found->color ? icons::icon(name, *found->color) : icons::icon(name);
}

} // namespace kelm
