#include "git/panel/view/row_menu.h"

#include "git/service/git_names.h"
#include "platform/files/file_url.h"
#include "platform/text/platform_words.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

RowAction copyAction(const QString& help, const QString& text)
{
    return {help, {}, [text] { QGuiApplication::clipboard()->setText(text); }};
}

QList<RowAction> fileMenu(const QUrl& file, bool isThere, const FileActions& actions)
{
    QList<RowAction> menu;
    if (actions.open && isThere) {
        menu.append({u"Open File"_s, {}, [open = actions.open, file] { open(file); }});
    }
    if (actions.reveal && isThere) {
        menu.append({inPlatformWords(u"Reveal in Finder"_s), {}, [reveal = actions.reveal, file] { reveal(file); }});
    }
    menu.append(copyAction(u"Copy Path"_s, filePath(file)));
    return menu;
}

QUrl fileOf(const GitFileStatus& status, const QUrl& workingTree)
{
    return urlOfFile(filePath(workingTree) + u'/' + namesOf(status).current);
}

} // namespace kelm
