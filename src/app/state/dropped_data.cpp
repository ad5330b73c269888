#include "app/state/dropped_data.h"

#include "app/state/app_state.h"

#include <QMimeData>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The texts of the URLs as they were dragged, since a URL that is taken apart does not give its scheme's letter case
/// again.
QStringList urlTextsOf(const QMimeData& data)
{
    QStringList texts;
    for (const QByteArray& line : data.data(u"text/uri-list"_s).split('\n')) {
        const QByteArray text = line.trimmed();
        if (!text.isEmpty() && !text.startsWith('#')) {
            texts << QString::fromUtf8(text);
        }
    }
    return texts;
}

} // namespace

bool canOpenDropped(const QMimeData& data)
{
    return data.hasUrls() || data.hasText();
}

void openDropped(const QMimeData& data, AppState& appState, const LinkHandler& handleLink)
{
    const QStringList urlTexts = urlTextsOf(data);
    if (!urlTexts.isEmpty()) {
        openURLs(urlTexts, appState, handleLink);
        return;
    }
    const QString text = data.text();
    if (!text.isEmpty()) {
        appState.createNewTab();
        appState.currentDocument()->setContent(text);
    }
}

} // namespace kelm
