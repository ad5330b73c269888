#include "platform/desktop/view/toolkit_words.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace kelm {

namespace {

constexpr std::array<std::string_view, 7> translatedContexts{
    "QFileDialog",      "QFileSystemModel", "QAbstractFileIconProvider", "QFileIconProvider", "QPlatformTheme",
    "QDialogButtonBox", "QGnomeTheme",
};

Qt::LayoutDirection& direction()
{
    static Qt::LayoutDirection direction = Qt::LeftToRight;
    return direction;
}

} // namespace

QString ToolkitWords::translate(const char* context, const char* text, const char* comment, int count) const
{
    const bool isTranslated = std::find(translatedContexts.begin(), translatedContexts.end(),
                                        std::string_view(context)) != translatedContexts.end();
    return isTranslated ? QTranslator::translate(context, text, comment, count) : QString();
}

bool installToolkitWords(QCoreApplication& application, const QLocale& locale)
{
    auto words = std::make_unique<ToolkitWords>();
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (!words->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), folder)) {
        return false;
    }
    words->setParent(&application);
    QCoreApplication::installTranslator(words.release());
    direction() = locale.textDirection();
    return true;
}

Qt::LayoutDirection directionOfToolkitWords()
{
    return direction();
}

} // namespace kelm
