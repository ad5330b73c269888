// Any bytes as a list of what is dropped, behind a line with the text that comes along: each link is handed on as it
// was dragged, and a text has a tab of its own where there is no list.
#include "app/state/dropped_data.h"
#include "fuzz/require.h"
#include "support/app_state_fixture.h"

#include <QCoreApplication>
#include <QMimeData>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    static int count = 1;
    static char name[] = "dropped_data";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    static AppStateFixture fixture;

    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const qsizetype end = bytes.indexOf('\n') < 0 ? bytes.size() : bytes.indexOf('\n');
    const QString text = QString::fromUtf8(bytes.left(end));
    // What is dropped means nothing on this machine: no path of it is looked for.
    const QByteArray list = bytes.mid(end + 1).replace("file:", "feil:").replace('/', '_');
    QMimeData dropped;
    dropped.setText(text);
    if (end < bytes.size()) {
        dropped.setData(QStringLiteral("text/uri-list"), list);
    }
    canOpenDropped(dropped);
    QStringList links;
    openDropped(dropped, fixture.state, [&links](const QString& link) { links.append(link); });
    for (const QString& link : links) {
        require(link.startsWith(QStringLiteral("kelmpane:")) && !link.contains(u'\n'));
    }
    require(links.isEmpty() || fixture.openTexts().isEmpty());
    if (list.trimmed().isEmpty() && !dropped.text().isEmpty()) {
        require(fixture.openTexts() == QStringList{dropped.text()} && links.isEmpty());
        require(fixture.state.currentDocument()->isModified());
    }
    fixture.state.setDocuments({});
    return 0;
}
