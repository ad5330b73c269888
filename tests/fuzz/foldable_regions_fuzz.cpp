// Any edits of any text: the regions that are kept are those of a scan of the whole text.
#include "editor/folding/fold_scans.h"
#include "editor/folding/foldable_regions.h"
#include "text/storage/text_tree.h"

#include <QString>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace kelm;

/// Reads numbers off the input; zeros behind its end.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool isAtEnd() const { return at_ >= size_; }
    int next() { return isAtEnd() ? 0 : data_[at_++]; }
    qsizetype below(qsizetype bound)
    {
        const int high = next();
        return (high << 8 | next()) % bound;
    }
    /// Bytes stand for what the scans look at, and for themselves.
    QString text(int most)
    {
        static const QStringList pieces{
            QStringLiteral("{"),      QStringLiteral("}"),      QStringLiteral("\""),   QStringLiteral("\\"),
            QStringLiteral("/"),      QStringLiteral("//"),     QStringLiteral("\n"),   QStringLiteral("\r"),
            QStringLiteral("\r\n"),   QStringLiteral("\n\n"),   QStringLiteral(" "),    QStringLiteral("\n "),
            QStringLiteral("\n\t"),   QStringLiteral("\n  x"),  QStringLiteral("<a>"),  QStringLiteral("</a>"),
            QStringLiteral("<b"),     QStringLiteral("</b>"),   QStringLiteral("<"),    QStringLiteral(">"),
            QStringLiteral("h1"),     QStringLiteral("\u0301"), QStringLiteral("한"),   QStringLiteral("\u2028"),
            QStringLiteral("\u0085"), QString(QChar(0xd83d)),   QString(QChar(0xde00)), QStringLiteral("\U0001D400")};
        QString result;
        for (int count = next() % (most + 1); count > 0; --count) {
            const int byte = next();
            result += byte < 0x80 ? QString(QChar(byte)) : pieces[(byte - 0x80) % pieces.size()];
        }
        return result;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

std::vector<FoldableRegion> scanned(CodeFolding kind, const QString& text)
{
    std::vector<FoldableRegion> regions = kind == CodeFolding::braces    ? scanBraces(text)
                                          : kind == CodeFolding::indents ? scanIndents(text)
                                                                         : scanTags(text);
    std::stable_sort(regions.begin(), regions.end(),
                     [](const FoldableRegion& a, const FoldableRegion& b) { return a.startLine < b.startLine; });
    return regions;
}

void check(const FoldableRegions& regions, const QString& text)
{
    const std::vector<FoldableRegion> expected = scanned(regions.kind(), text);
    if (regions.all() != expected) {
        std::abort();
    }
    qsizetype line = 0;
    for (const FoldableRegion& region : expected) {
        if (region.startLine != line && regions.firstRegionStartingAt(region.startLine) != region) {
            std::abort();
        }
        line = region.startLine;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    constexpr CodeFolding kinds[] = {CodeFolding::braces, CodeFolding::indents, CodeFolding::tags};
    FoldableRegions regions(kinds[input.next() % 3], 1 + input.next() % 32);
    QString text = input.text(200);
    TextTree tree(text);
    regions.reset(text.size());
    while (!input.isAtEnd()) {
        const int action = input.next();
        if (action % 4 == 0) {
            regions.settle(tree, action);
        } else {
            const TextRange range = TextRange{input.below(text.size() + 1), input.next() % 16}.clampedTo(text.size());
            const QString put = input.text(8);
            text.replace(range.location, range.length, put);
            tree.replace(range, put);
            regions.textReplaced(range, put.size());
        }
        if (action % 4 == 1) {
            regions.settle(tree);
        }
        if (regions.isSettled()) {
            check(regions, text);
        }
    }
    regions.settle(tree);
    check(regions, text);
    return 0;
}
