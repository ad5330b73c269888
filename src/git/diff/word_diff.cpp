#include "git/diff/word_diff.h"

#include "git/diff/common_subsequence.h"
#include "platform/text/canonical_text.h"
#include "platform/text/grapheme_boundaries.h"

#include <QHash>

namespace kelm {

namespace {

bool isPlain(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit < QChar(0x80); });
}

/// Whether the character, which may be several units, belongs to a word. A letter or number is one by its base.
bool isWordCharacter(QStringView character)
{
    if (character == u'_') {
        return true;
    }
    const QChar first = character.front();
    if (first.isHighSurrogate() && character.size() > 1 && character[1].isLowSurrogate()) {
        return QChar::isLetterOrNumber(QChar::surrogateToUcs4(first, character[1]));
    }
    return first.isLetterOrNumber();
}

/// Numbers for tokens, the same number for tokens that are canonically equivalent.
class TokenNumbers
{
public:
    std::uint32_t of(const QString& token)
    {
        const QString key = isPlain(token) ? token : decomposed(token);
        const auto known = numbers_.constFind(key);
        return known != numbers_.cend() ? *known : *numbers_.insert(key, static_cast<std::uint32_t>(numbers_.size()));
    }

    std::vector<std::uint32_t> of(const QStringList& tokens)
    {
        std::vector<std::uint32_t> numbers;
        numbers.reserve(static_cast<std::size_t>(tokens.size()));
        for (const QString& token : tokens) {
            numbers.push_back(of(token));
        }
        return numbers;
    }

private:
    QHash<QString, std::uint32_t> numbers_;
};

using Numbers = std::vector<std::uint32_t>;

/// The common subsequence as indices in `a`. What both begin with and end with is common whatever stands between, and
/// the walk through the table takes it too: only the middle needs the table.
Numbers commonIndices(const Numbers& a, const Numbers& b, const std::atomic<bool>& stop)
{
    const auto prefix =
        static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
    const auto rest = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()) - prefix);
    const auto suffix = static_cast<std::size_t>(
        std::mismatch(a.rbegin(), a.rbegin() + rest, b.rbegin(), b.rbegin() + rest).first - a.rbegin());
    const auto middle = [=](const Numbers& tokens) {
        return Numbers(tokens.begin() + std::ptrdiff_t(prefix), tokens.end() - std::ptrdiff_t(suffix));
    };

    Numbers common;
    for (std::size_t index = 0; index < prefix; ++index) {
        common.push_back(static_cast<std::uint32_t>(index));
    }
    for (const std::uint32_t index : commonSubsequence(middle(a), middle(b), stop)) {
        common.push_back(index + static_cast<std::uint32_t>(prefix));
    }
    for (std::size_t index = a.size() - suffix; index < a.size(); ++index) {
        common.push_back(static_cast<std::uint32_t>(index));
    }
    return common;
}

/// Cuts one line at the common tokens: each is the same where it is met first behind the one before, and what is passed
/// over has changed.
QList<WordDiff::Segment> segments(const QStringList& tokens, const Numbers& numbers, const Numbers& common,
                                  WordDiff::SegmentKind changed)
{
    QList<WordDiff::Segment> result;
    result.reserve(tokens.size());
    auto next = common.begin();
    for (qsizetype index = 0; index < tokens.size(); ++index) {
        const bool isSame = next != common.end() && numbers[static_cast<std::size_t>(index)] == *next;
        result.append({isSame ? WordDiff::SegmentKind::same : changed, tokens[index]});
        if (isSame) {
            ++next;
        }
    }
    return result;
}

} // namespace

WordDiff::Result WordDiff::diff(const QString& oldLine, const QString& newLine)
{
    const std::atomic<bool> goOn = false;
    return diff(oldLine, newLine, goOn);
}

WordDiff::Result WordDiff::diff(const QString& oldLine, const QString& newLine, const std::atomic<bool>& stop)
{
    const QStringList oldTokens = tokenize(oldLine);
    const QStringList newTokens = tokenize(newLine);
    TokenNumbers tokenNumbers;
    const Numbers oldNumbers = tokenNumbers.of(oldTokens);
    const Numbers newNumbers = tokenNumbers.of(newTokens);
    Numbers common = commonIndices(oldNumbers, newNumbers, stop);
    if (stop) {
        return {};
    }
    for (std::uint32_t& index : common) {
        index = oldNumbers[index];
    }
    return {segments(oldTokens, oldNumbers, common, SegmentKind::removed),
            segments(newTokens, newNumbers, common, SegmentKind::added)};
}

QStringList WordDiff::tokenize(const QString& text)
{
    QStringList tokens;
    qsizetype start = 0;
    bool inWord = false;
    const auto take = [&](qsizetype at, QStringView character) {
        const bool isWord = isWordCharacter(character);
        if (isWord != inWord) {
            if (at > start) {
                tokens.append(text.sliced(start, at - start));
            }
            start = at;
            inWord = isWord;
        }
    };
    for (GraphemeWalk walk(text); !walk.isAtEnd();) {
        const qsizetype at = walk.place();
        take(at, walk.next());
    }
    if (start < text.size()) {
        tokens.append(text.sliced(start));
    }
    return tokens;
}

QStringList WordDiff::longestCommonSubsequence(const QStringList& a, const QStringList& b)
{
    TokenNumbers tokenNumbers;
    const Numbers aNumbers = tokenNumbers.of(a);
    const Numbers bNumbers = tokenNumbers.of(b);
    QStringList common;
    const std::atomic<bool> goOn = false;
    for (const std::uint32_t index : commonIndices(aNumbers, bNumbers, goOn)) {
        common.append(a[index]);
    }
    return common;
}

} // namespace kelm
