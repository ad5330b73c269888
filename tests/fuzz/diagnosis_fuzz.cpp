// Any text as a standard error, and as the name of a variable: both languages find the same, and a shell reads the line
// of an export as the one word that it is.
#include "fuzz/require.h"
#include "learning/diagnosis.h"
#include "learning/end_of_input.h"
#include "learning/export_line.h"

#include <algorithm>
#include <cstdint>

namespace {

using namespace kelm;

/// What a shell makes of one word: plain signs, and the two kinds of single quotes. Absent where the word would end
/// before the text does, or something in it is not read as it stands.
std::optional<QString> readByShell(const QString& word)
{
    QString read;
    qsizetype at = 0;
    while (at < word.size()) {
        const bool hasEscapes = word.mid(at, 2) == QStringLiteral("$'");
        if (word[at] == u'\\') {
            read += word.mid(at + 1, 1);
            at += 2;
        } else if (word[at] == u'\'' || hasEscapes) {
            for (at += hasEscapes ? 2 : 1; at < word.size() && word[at] != u'\''; ++at) {
                if (hasEscapes && word[at] == u'\\') {
                    require(word.mid(at + 1, 1) == QStringLiteral("u"));
                    read += QChar(word.mid(at + 2, 4).toUShort(nullptr, 16));
                    at += 5;
                } else {
                    read += word[at];
                }
            }
            if (at == word.size()) {
                return std::nullopt;
            }
            ++at;
        } else if ((word[at].unicode() < 0x80 && word[at].isLetterOrNumber()) ||
                   QStringView(u"_=.").contains(word[at])) {
            read += word[at++];
        } else {
            return std::nullopt;
        }
    }
    return read;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<Diagnosis> english = diagnose(text, false);
    const std::optional<Diagnosis> korean = diagnose(text, true);
    require(english.has_value() == korean.has_value());
    if (english) {
        require(!english->title.isEmpty() && !english->message.isEmpty() && english->fix == korean->fix);
    }
    require(!text.isEmpty() || !english);
    require(!text.isEmpty() || !tellsOfEndOfInput(text));
    tellsOfEndOfInput(text);

    const QString line = exportLine(text);
    const QString command = QStringLiteral("export ");
    require(line.startsWith(command));
    require(std::none_of(line.begin(), line.end(), [](QChar unit) { return unit.category() == QChar::Other_Control; }));
    require(readByShell(line.mid(command.size())) == text + QStringLiteral("=..."));
    return 0;
}
