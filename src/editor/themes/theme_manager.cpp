#include "editor/themes/theme_manager.h"

#include "platform/events/main_queue.h"
#include "platform/files/open_file.h"
#include "platform/files/standard_paths.h"

#include <QFile>
#include <QSet>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString selectedThemeKey = u"selectedTheme"_s;
/// Below this a thread costs more than it saves.
constexpr std::size_t fewestFilesPerThread = 50;

/// Whether the name of a file has the extension "json", in this letter case. A name that begins with its only dot has
/// no extension.
bool isThemeFileName(const std::filesystem::path& path)
{
    return path.extension() == ".json";
}

std::optional<EditorTheme> readTheme(const std::filesystem::path& path)
{
    // The path stays in the system's own bytes: a name need not be text.
    const OpenFile file = OpenFile::openForReading(QByteArray::fromStdString(path.native()));
    const std::optional<QByteArray> json = file.isOpen() ? file.readAll() : std::nullopt;
    return json ? EditorTheme::decode(*json) : std::nullopt;
}

/// What the files hold, in the order of `paths`. Many files are shared out among the processor's cores, since decoding
/// a theme takes longer than reading it; the call returns when all are done.
std::vector<std::optional<EditorTheme>> readThemes(const std::vector<std::filesystem::path>& paths)
{
    std::vector<std::optional<EditorTheme>> themes(paths.size());
    std::atomic<std::size_t> next = 0;
    const auto readOn = [&] {
        for (std::size_t index = next++; index < paths.size(); index = next++) {
            themes[index] = readTheme(paths[index]);
        }
    };
    const std::size_t mostThreads = std::max(std::thread::hardware_concurrency(), 1U);
    std::vector<std::jthread> others;
    try {
        while (others.size() + 1 < std::min(mostThreads, paths.size() / fewestFilesPerThread)) {
            others.emplace_back(readOn);
        }
    } catch (const std::system_error&) {
        // The system has no thread to spare: those that there are read all.
    }
    readOn();
    others.clear();
    return themes;
}

} // namespace

ThemeManager::ThemeManager(Services services) : services_(std::move(services))
{
    loadSavedTheme();
    loadCustomThemes();
    applyAppearance();
}

void ThemeManager::setCurrentTheme(const EditorTheme& theme)
{
    if (currentTheme_ == theme) {
        return;
    }
    currentTheme_ = theme;
    Q_EMIT currentThemeChanged();
}

void ThemeManager::applyAppearance()
{
    // The work may outlive the manager, so it holds what it needs.
    const Appearance appearance = currentTheme_.isDark ? Appearance::dark : Appearance::light;
    onMainQueue([set = services_.setAppearance, appearance] { set(appearance); });
}

void ThemeManager::saveTheme()
{
    services_.userDefaults.setString(selectedThemeKey, currentTheme_.name);
}

void ThemeManager::loadSavedTheme()
{
    const std::optional<QString> name = services_.userDefaults.string(selectedThemeKey);
    if (!name) {
        return;
    }
    const auto theme = std::find_if(availableThemes_.cbegin(), availableThemes_.cend(),
                                    [&name](const EditorTheme& each) { return each.name == *name; });
    if (theme != availableThemes_.cend()) {
        setCurrentTheme(*theme);
    }
}

void ThemeManager::loadCustomThemes()
{
    if (services_.applicationSupportDirectory.isEmpty()) {
        return;
    }
    const std::filesystem::path folder(
        QFile::encodeName(services_.applicationSupportDirectory + u"/KelmPane/Themes"_s).toStdString());
    std::error_code error;
    if (!std::filesystem::exists(folder, error) && !error) {
        return;
    }
    // The order is that of the folder itself, unsorted.
    std::vector<std::filesystem::path> paths;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (isThemeFileName(entry->path())) {
            paths.push_back(entry->path());
        }
    }
    if (error) {
        services_.log.print(u"Error loading custom themes: "_s + QString::fromStdString(error.message()));
        return;
    }
    QSet<QString> names;
    for (const EditorTheme& theme : std::as_const(availableThemes_)) {
        names.insert(theme.name);
    }
    const qsizetype countBefore = availableThemes_.size();
    for (std::optional<EditorTheme>& theme : readThemes(paths)) {
        if (theme && !names.contains(theme->name)) {
            names.insert(theme->name);
            availableThemes_.append(*std::move(theme));
        }
    }
    if (availableThemes_.size() != countBefore) {
        Q_EMIT availableThemesChanged();
    }
}

ThemeManager& ThemeManager::shared()
{
    static ThemeManager manager({UserDefaults::shared(), Log::system(), standardPaths::applicationSupportDirectory(),
                                 setApplicationAppearance});
    return manager;
}

} // namespace kelm
