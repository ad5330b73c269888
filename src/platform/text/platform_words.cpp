#include "platform/text/platform_words.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

#ifdef Q_OS_MACOS

QString inPlatformWords(const QString& text)
{
    return text;
}

#else

namespace {

struct Word
{
    QStringView there;
    QStringView here;
};

/// The signs of modifiers, in the order in which their words stand before a key.
constexpr std::array<Word, 4> modifiers{{
    {u"⌃", u"Ctrl"},
    {u"⌘", u"Ctrl"},
    {u"⌥", u"Alt"},
    {u"⇧", u"Shift"},
}};

/// The longer ones first.
constexpr std::array<Word, 3> words{{
    {u"Reveal in Finder", u"Show in File Manager"},
    {u"Finder", u"File Manager"},
    {u"Cmd-", u"Ctrl+"},
}};

bool isModifier(QChar unit)
{
    return std::any_of(modifiers.begin(), modifiers.end(), [unit](const Word& word) { return word.there == unit; });
}

/// The words of the signs, each once.
QStringList wordsOf(QStringView signs)
{
    QStringList named;
    for (const Word& modifier : modifiers) {
        if (signs.contains(modifier.there) && !named.contains(modifier.here)) {
            named.append(modifier.here.toString());
        }
    }
    return named;
}

} // namespace

QString inPlatformWords(const QString& text)
{
    QString shown;
    shown.reserve(text.size());
    for (auto at = text.begin(); at != text.end();) {
        const auto end = std::find_if_not(at, text.end(), isModifier);
        if (end == at) {
            shown += *at++;
            continue;
        }
        shown += wordsOf(QStringView(at, end)).join(u'+');
        if (end != text.end() && !end->isSpace()) {
            shown += u'+';
        }
        at = end;
    }
    for (const Word& word : words) {
        shown.replace(word.there.toString(), word.here.toString());
    }
    return shown;
}

#endif

} // namespace kelm
