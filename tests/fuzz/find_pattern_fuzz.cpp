// Any pattern in any text with any replacement, a line each behind a byte of options: matches follow each other, and
// all replacements at once are what they are one by one.
#include "fuzz/require.h"
#include "text/find/find_query.h"
#include "text/storage/text_tree.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using namespace kelm;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    const QString pattern = input.section(u'\n', 0, 0);
    const QString replacement = input.section(u'\n', 1, 1);
    const QString text = input.section(u'\n', 2).left(2000);
    const FindOptions options{(data[0] & 1) != 0, (data[0] & 2) != 0, (data[0] & 4) != 0};
    const auto compiled = FindQuery::compile(pattern, options);
    const auto* query = std::get_if<FindQuery>(&compiled);
    if (query == nullptr) {
        const FindError& error = std::get<FindError>(compiled);
        require(options.regularExpression && !error.message.isEmpty() && error.offset <= pattern.size());
        return 0;
    }
    const TextTree tree(text);
    std::vector<TextRange> matches;
    const auto ending = query->enumerate(tree, 0, text.size(), [&matches](TextRange match) {
        matches.push_back(match);
        return true;
    });
    require(pattern.isEmpty() ? matches.empty() : ending != FindQuery::Ending::stopped);
    QString replaced;
    qsizetype done = 0;
    for (const TextRange match : matches) {
        require(match.location >= done && match.length >= 0 && match.location + match.length <= text.size());
        replaced += QStringView(text).sliced(done, match.location - done);
        const std::optional<QString> put = query->replacementFor(tree, match, replacement);
        require(put.has_value() || ending == FindQuery::Ending::gaveUp);
        replaced += put.value_or(QString());
        done = match.location + match.length;
    }
    if (ending != FindQuery::Ending::complete) {
        return 0;
    }
    const ReplaceAllResult all = query->replaceAll(tree, replacement);
    require(all.outcome != ReplaceAllResult::Outcome::nothingFound || matches.empty());
    if (all.outcome == ReplaceAllResult::Outcome::replaced) {
        require(all.count == qsizetype(matches.size()) && all.range.location == matches.front().location);
        require(text.left(all.range.location) + all.text.toString() == replaced);
        require(all.range.location + all.range.length == done);
    }
    return 0;
}
