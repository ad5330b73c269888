#include "platform/desktop/view/file_dialog_look.h"

#include "platform/desktop/view/shown_name_delegate.h"
#include "platform/desktop/view/toolkit_words.h"
#include "platform/style/view/file_icons.h"

#include <QAbstractItemView>
#include <QFileDialog>
#include <QHeaderView>
#include <QLayout>
#include <QLineEdit>
#include <QSplitter>
#include <QToolButton>
#include <QTreeView>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int margin = 16;
constexpr int spacing = 8;
constexpr QSize buttonSize(26, 26);
constexpr QSize iconSize(16, 16);
constexpr QSize firstSize(780, 500);
constexpr int placesWidth = 150;
constexpr int nameColumnWidth = 300;

} // namespace

QLineEdit* nameField(const QFileDialog& dialog)
{
    return dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
}

void giveOwnLook(QFileDialog& dialog)
{
    if (nameField(dialog) == nullptr) {
        return;
    }
    // The dialog lists files on a thread that may outlive whoever gave it its icons.
    static FileIcons icons;
    dialog.setIconProvider(&icons);
    dialog.setLayoutDirection(directionOfToolkitWords());
    dialog.setItemDelegate(new ShownNameDelegate(&dialog));
    if (QLayout* layout = dialog.layout()) {
        layout->setContentsMargins(margin, margin, margin, margin);
        layout->setSpacing(spacing);
    }
    for (auto* button : dialog.findChildren<QToolButton*>()) {
        button->setAutoRaise(true);
        button->setFixedSize(buttonSize);
    }
    for (auto* list : dialog.findChildren<QAbstractItemView*>()) {
        list->setIconSize(iconSize);
    }
    if (auto* files = dialog.findChild<QTreeView*>(u"treeView"_s)) {
        files->header()->resizeSection(0, nameColumnWidth);
        files->header()->setStretchLastSection(true);
    }
    if (auto* parts = dialog.findChild<QSplitter*>(u"splitter"_s)) {
        parts->setSizes({placesWidth, firstSize.width() - placesWidth});
    }
    dialog.resize(dialog.size().expandedTo(firstSize));
}

} // namespace kelm
