// Any edits of any text: what is settled in portions has the colours of one whole pass.
#include "editor/highlighter/rule_painting.h"
#include "editor/highlighter/rule_tracks.h"

#include <cstdint>
#include <cstdlib>

namespace {

using namespace kelm;

/// Takes the numbers of an input from its bytes.
class Input
{
public:
    explicit Input(QByteArray bytes) : bytes_(std::move(bytes)) {}

    bool isAtEnd() const { return at_ >= bytes_.size(); }
    qsizetype below(qsizetype bound)
    {
        qsizetype number = 0;
        for (qsizetype most = 1; most < bound; most *= 256) {
            number = number * 256 + (isAtEnd() ? 0 : quint8(bytes_[at_++]));
        }
        return bound > 0 ? number % bound : 0;
    }
    /// Up to `longest` bytes as text.
    QString text(qsizetype longest)
    {
        const QByteArray part = bytes_.mid(at_, below(longest + 1));
        at_ += part.size();
        return QString::fromUtf8(part);
    }

private:
    QByteArray bytes_;
    qsizetype at_ = 0;
};

void check(const RuleTracks& tracks, const TextTree& tree, const QString& text, RuleList list)
{
    constexpr QRgb plain = 0xff000001;
    std::vector<HighlightRule> rules;
    std::vector<QRgb> colors{plain};
    for (const RuleEntry& entry : list) {
        colors.push_back(plain + static_cast<QRgb>(colors.size()));
        rules.push_back({entry.patternText(), QColor::fromRgba(colors.back()), entry.options});
    }
    if (tracks.colorsIn(tree, {0, text.size()}, colors) != paintRules(text, plain, rules)) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    const RuleList lists[] = {rules::swift,    rules::python, rules::javaScript, rules::json, rules::xml,    rules::css,
                              rules::markdown, rules::shell,  rules::go,         rules::rust, rules::generic};
    const RuleList list = lists[input.below(std::size(lists))];
    RuleTracks tracks(list, {.spacing = 1 + input.below(32), .longestZone = 2 + input.below(64), .window = 200});
    TextTree tree;
    QString text;
    while (!input.isAtEnd()) {
        const qsizetype start = input.below(text.size() + 1);
        const TextRange range{start, std::min(input.below(256), text.size() - start)};
        const QString replacement = input.text(255);
        text.replace(range.location, range.length, replacement);
        tree.replace(range, replacement);
        tracks.textReplaced(range, replacement.size());
        tracks.settle(tree, input.below(256));
        if (input.below(2) == 0) {
            tracks.settle(tree);
            check(tracks, tree, text, list);
        }
    }
    tracks.settle(tree);
    check(tracks, tree, text, list);
    return 0;
}
