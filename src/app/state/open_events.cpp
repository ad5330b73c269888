#include "app/state/open_events.h"

#include "app/state/app_state.h"
#include "learning/lesson_link.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QDir>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The scheme of a URL's text as it is written there.
QStringView schemeOf(const QString& urlText)
{
    return QStringView(urlText).first(std::max(urlText.indexOf(u':'), qsizetype(0)));
}

/// Whether `text` can be a scheme (RFC 3986, section 3.1).
bool isScheme(QStringView text)
{
    const auto isLetter = [](QChar unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); };
    const auto isSchemeUnit = [&](QChar unit) {
        return isLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'+' || unit == u'-' || unit == u'.';
    };
    return !text.isEmpty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isSchemeUnit);
}

bool isURLText(const QString& argument)
{
    const QStringView scheme = schemeOf(argument);
    return isScheme(scheme) && QStringView(argument).sliced(scheme.size()).startsWith(u"://");
}

QString fileURLText(const QString& path)
{
    return urlOfFile(isFolder(path) && !path.endsWith(u'/') ? path + u'/' : path).toString(QUrl::FullyEncoded);
}

} // namespace

void openURLs(const QStringList& urlTexts, AppState& appState, const LinkHandler& handleLink)
{
    QList<QUrl> files;
    const auto openFiles = [&] { appState.openFiles(std::exchange(files, {})); };
    for (const QString& urlText : urlTexts) {
        const QUrl url(urlText);
        if (handleLink && isLessonLink(urlText)) {
            openFiles();
            handleLink(urlText);
        } else if (hasDirectoryPath(url)) {
            openFiles();
            appState.setCurrentProject(url);
        } else {
            files.append(url);
        }
    }
    openFiles();
}

QStringList urlTextsOfArguments(const QStringList& arguments, const QString& workingDirectory)
{
    QStringList urlTexts;
    for (const QString& argument : arguments) {
        if (argument.isEmpty()) {
            continue;
        }
        urlTexts << (isURLText(argument)
                         ? argument
                         : fileURLText(QDir::cleanPath(QDir(workingDirectory).absoluteFilePath(argument))));
    }
    return urlTexts;
}

} // namespace kelm
