#include "text/storage/text_tree.h"

#include "text/storage/line_terminator.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// The most units of a piece. Of 1,024 to 16,384 this one and its half gave the shortest edits in a text of 100 MB, the
/// copy of a piece and the way to it taken together, and this one is built sooner.
constexpr qsizetype largestPiece = 4096;

/// The number of line ends within `text` alone: a carriage return at its end is one.
struct LineEnds
{
    qsizetype count = 0;
    qsizetype feeds = 0;
    qsizetype newlines = 0;
};

/// How many units of each kind stand in a stretch. Narrow sums over a fixed number of units, which the compiler takes
/// eight at a time: every piece of a text that is opened goes through here.
struct UnitCounts
{
    static constexpr int stretch = 64;

    quint16 feeds = 0;
    quint16 returns = 0;
    /// U+0085, U+2028 and U+2029.
    quint16 others = 0;
    /// The vertical tab and the form feed.
    quint16 tabs = 0;

    void add(const char16_t* units, int count)
    {
        for (int at = 0; at < count; ++at) {
            const char16_t unit = units[at];
            feeds = quint16(feeds + quint16(unit == u'\n'));
            returns = quint16(returns + quint16(unit == u'\r'));
            others = quint16(others + quint16((unit == 0x85) | (unit == 0x2028) | (unit == 0x2029)));
            tabs = quint16(tabs + quint16((unit == u'\v') | (unit == u'\f')));
        }
    }
};

LineEnds lineEndsIn(QStringView text)
{
    const char16_t* const units = text.utf16();
    const qsizetype size = text.size();
    LineEnds ends;
    qsizetype returns = 0;
    const auto add = [&](const UnitCounts& counts) {
        const qsizetype lines = counts.feeds + counts.returns + counts.others;
        ends.count += lines;
        ends.feeds += counts.feeds;
        ends.newlines += lines + counts.tabs;
        returns += counts.returns;
    };
    qsizetype start = 0;
    for (; size - start >= UnitCounts::stretch; start += UnitCounts::stretch) {
        UnitCounts counts;
        counts.add(units + start, UnitCounts::stretch);
        add(counts);
    }
    UnitCounts rest;
    rest.add(units + start, static_cast<int>(size - start));
    add(rest);
    if (returns > 0) {
        // A pair is one end.
        for (qsizetype at = 1; at < size; ++at) {
            ends.count -= units[at - 1] == u'\r' && units[at] == u'\n' ? 1 : 0;
        }
    }
    return ends;
}

/// The place in `text` behind its n-th line end, n from 1, or its size where it has no more. A carriage return at the
/// end counts as one.
qsizetype behindLineEnd(QStringView text, qsizetype n)
{
    // Whole blocks are passed over by their sums.
    constexpr qsizetype block = 256;
    qsizetype at = 0;
    while (at + block < text.size()) {
        const bool isPairCut = text[at + block - 1] == u'\r' && text[at + block] == u'\n';
        const qsizetype ends = lineEndsIn(text.sliced(at, block)).count - (isPairCut ? 1 : 0);
        if (ends >= n) {
            break;
        }
        n -= ends;
        // The line feed of a pair that is cut counts in the next block.
        at += block;
    }
    while (at < text.size()) {
        const qsizetype length = lineTerminatorLength(text, at);
        at += std::max(length, qsizetype(1));
        if (length > 0 && --n == 0) {
            return at;
        }
    }
    return text.size();
}

/// The same for line feeds.
qsizetype behindLineFeed(QStringView text, qsizetype n)
{
    constexpr qsizetype block = 256;
    qsizetype at = 0;
    for (; at + block < text.size(); at += block) {
        const qsizetype feeds = text.sliced(at, block).count(u'\n');
        if (feeds >= n) {
            break;
        }
        n -= feeds;
    }
    for (; at < text.size(); ++at) {
        if (text[at] == u'\n' && --n == 0) {
            return at + 1;
        }
    }
    return text.size();
}

} // namespace

/// A piece of the text, or two trees one behind the other, and what is counted of all that is below.
struct TextTree::Node
{
    QString piece;
    Tree left;
    Tree right;
    qsizetype length = 0;
    qsizetype lineEnds = 0;
    qsizetype lineFeeds = 0;
    qsizetype newlines = 0;
    QChar first;
    QChar last;
    quint8 height = 0;

    bool isPiece() const { return !left; }
    /// Whether a carriage return ends the left part and its line feed begins the right one: each counts a line end,
    /// and they are one.
    bool partsPair() const { return left->last == u'\r' && right->first == u'\n'; }
    /// The line ends when a line feed follows, or does not.
    qsizetype lineEndsBefore(bool lineFeed) const { return lineEnds - (lineFeed && last == u'\r' ? 1 : 0); }
};

/// How trees are made of trees. None of these changes one; null is the empty text.
struct TextTree::Building
{
    static int heightOf(const Tree& tree) { return tree ? tree->height : -1; }

    static Tree ofPiece(QString piece)
    {
        if (piece.isEmpty()) {
            return nullptr;
        }
        const LineEnds ends = lineEndsIn(piece);
        auto node = std::make_shared<Node>();
        node->length = piece.size();
        node->lineEnds = ends.count;
        node->lineFeeds = ends.feeds;
        node->newlines = ends.newlines;
        node->first = piece.front();
        node->last = piece.back();
        node->piece = std::move(piece);
        return node;
    }

    /// What of a text a walk has still before it, the next part last, and how much of that is behind it, which is more
    /// than nothing for a piece alone.
    struct Ahead
    {
        std::vector<const Node*> nodes;
        qsizetype behind = 0;

        explicit Ahead(const Tree& tree)
        {
            if (tree) {
                nodes.push_back(tree.get());
            }
        }
        const Node& next() const { return *nodes.back(); }
        bool isAtPiece() const { return !next().left; }
        template <bool fromEnd>
        void goIntoNext()
        {
            const Node& node = next();
            nodes.back() = (fromEnd ? node.left : node.right).get();
            nodes.push_back((fromEnd ? node.right : node.left).get());
        }
        void pass(qsizetype units)
        {
            behind += units;
            if (behind == next().length) {
                nodes.pop_back();
                behind = 0;
            }
        }
    };

    /// How many units of two pieces are the same from where two walks are; of no more than both have.
    template <bool fromEnd>
    static qsizetype sameUnits(const Ahead& a, const Ahead& b)
    {
        const QStringView own = a.next().piece;
        const QStringView other = b.next().piece;
        const qsizetype longest = std::min(own.size() - a.behind, other.size() - b.behind);
        if constexpr (fromEnd) {
            const auto from = own.rbegin() + a.behind;
            return std::mismatch(from, from + longest, other.rbegin() + b.behind).first - from;
        } else {
            const auto from = own.begin() + a.behind;
            return std::mismatch(from, from + longest, other.begin() + b.behind).first - from;
        }
    }

    /// How many units two texts have in common at their start, or at their end: `longest` at most. What they share is
    /// passed by without a look.
    template <bool fromEnd>
    static qsizetype common(const Tree& a, const Tree& b, qsizetype longest)
    {
        Ahead ofA(a);
        Ahead ofB(b);
        qsizetype same = 0;
        while (same < longest) {
            if (&ofA.next() == &ofB.next() && ofA.behind == ofB.behind) {
                const qsizetype rest = ofA.next().length - ofA.behind;
                ofA.pass(rest);
                ofB.pass(rest);
                same += rest;
            } else if (ofA.isAtPiece() && ofB.isAtPiece()) {
                const qsizetype found = sameUnits<fromEnd>(ofA, ofB);
                same += found;
                if (found < std::min(ofA.next().length - ofA.behind, ofB.next().length - ofB.behind)) {
                    break;
                }
                ofA.pass(found);
                ofB.pass(found);
            } else if (ofB.isAtPiece() || (!ofA.isAtPiece() && ofA.next().length >= ofB.next().length)) {
                ofA.goIntoNext<fromEnd>();
            } else {
                ofB.goIntoNext<fromEnd>();
            }
        }
        return std::min(same, longest);
    }

    /// Of two trees whose heights differ by one at most.
    static Tree ofParts(Tree left, Tree right)
    {
        auto node = std::make_shared<Node>();
        node->length = left->length + right->length;
        node->first = left->first;
        node->last = right->last;
        node->height = quint8(1 + std::max(left->height, right->height));
        const bool isPair = left->last == u'\r' && right->first == u'\n';
        node->lineEnds = left->lineEnds + right->lineEnds - (isPair ? 1 : 0);
        node->lineFeeds = left->lineFeeds + right->lineFeeds;
        node->newlines = left->newlines + right->newlines;
        node->left = std::move(left);
        node->right = std::move(right);
        return node;
    }

    /// Of two trees whose heights differ by two at most.
    static Tree balanced(Tree left, Tree right)
    {
        if (heightOf(left) > heightOf(right) + 1) {
            if (heightOf(left->left) >= heightOf(left->right)) {
                return ofParts(left->left, ofParts(left->right, std::move(right)));
            }
            const Tree middle = left->right;
            return ofParts(ofParts(left->left, middle->left), ofParts(middle->right, std::move(right)));
        }
        if (heightOf(right) > heightOf(left) + 1) {
            if (heightOf(right->right) >= heightOf(right->left)) {
                return ofParts(ofParts(std::move(left), right->left), right->right);
            }
            const Tree middle = right->left;
            return ofParts(ofParts(std::move(left), middle->left), ofParts(middle->right, right->right));
        }
        return ofParts(std::move(left), std::move(right));
    }

    /// Of any two trees. Two pieces that fit into one become one.
    static Tree joined(Tree left, Tree right)
    {
        if (!left || !right) {
            return left ? left : right;
        }
        if (left->isPiece() && right->isPiece() && left->length + right->length <= largestPiece) {
            return ofPiece(left->piece + right->piece);
        }
        if (heightOf(left) > heightOf(right) + 1) {
            return balanced(left->left, joined(left->right, std::move(right)));
        }
        if (heightOf(right) > heightOf(left) + 1) {
            return balanced(joined(std::move(left), right->left), right->right);
        }
        return ofParts(std::move(left), std::move(right));
    }

    static Tree ofText(QStringView text)
    {
        if (text.size() <= largestPiece) {
            return ofPiece(text.toString());
        }
        // Halves of whole pieces, so that the tree is as low as it can be.
        const qsizetype pieces = (text.size() + freshPiece - 1) / freshPiece;
        const qsizetype half = pieces / 2 * freshPiece;
        return joined(ofText(text.first(half)), ofText(text.sliced(half)));
    }

    /// Of `count` texts.
    static Tree ofTexts(const TextTree* texts, std::size_t count)
    {
        if (count <= 1) {
            return count == 0 ? nullptr : texts->root_;
        }
        const std::size_t half = count / 2;
        return joined(ofTexts(texts, half), ofTexts(texts + half, count - half));
    }

    /// The units from `from` to `to`, each of which may lie outside the tree.
    static Tree partOf(const Tree& tree, qsizetype from, qsizetype to)
    {
        from = std::max(from, qsizetype(0));
        to = tree ? std::min(to, tree->length) : 0;
        if (from >= to) {
            return nullptr;
        }
        if (to - from == tree->length) {
            return tree;
        }
        if (tree->isPiece()) {
            return ofPiece(tree->piece.sliced(from, to - from));
        }
        const qsizetype middle = tree->left->length;
        return joined(partOf(tree->left, from, to), partOf(tree->right, from - middle, to - middle));
    }

    /// With the units between `from` and `to` replaced. Where that fits into the piece in which it is, nothing but the
    /// way to it is made anew. A way that grew low is joined again from its parts.
    static Tree replaced(const Tree& tree, qsizetype from, qsizetype to, QStringView text)
    {
        if (tree->isPiece()) {
            if (tree->length - (to - from) + text.size() <= largestPiece) {
                return ofPiece(tree->piece.first(from).append(text).append(QStringView(tree->piece).sliced(to)));
            }
            return joined(joined(partOf(tree, 0, from), ofText(text)), partOf(tree, to, tree->length));
        }
        const qsizetype middle = tree->left->length;
        if (to <= middle) {
            return joined(replaced(tree->left, from, to, text), tree->right);
        }
        if (from >= middle) {
            return joined(tree->left, replaced(tree->right, from - middle, to - middle, text));
        }
        return joined(joined(partOf(tree->left, 0, from), ofText(text)),
                      partOf(tree->right, to - middle, tree->right->length));
    }

    static qsizetype pieceCount(const Tree& tree)
    {
        return !tree ? 0 : tree->isPiece() ? 1 : pieceCount(tree->left) + pieceCount(tree->right);
    }

    static bool forEachPiece(const Tree& tree, qsizetype from, qsizetype to,
                             const std::function<bool(QStringView)>& look)
    {
        if (tree->isPiece()) {
            return look(QStringView(tree->piece).sliced(from, to - from));
        }
        const qsizetype middle = tree->left->length;
        return (from >= middle || forEachPiece(tree->left, from, std::min(to, middle), look)) &&
               (to <= middle || forEachPiece(tree->right, std::max(from - middle, qsizetype(0)), to - middle, look));
    }
};

TextTree::TextTree(QStringView text) : root_(Building::ofText(text)) {}

TextTree TextTree::joined(const std::vector<TextTree>& texts)
{
    return TextTree(Building::ofTexts(texts.data(), texts.size()));
}

qsizetype TextTree::length() const
{
    return root_ ? root_->length : 0;
}

qsizetype TextTree::lineCount() const
{
    return root_ ? root_->lineEnds + 1 : 1;
}

qsizetype TextTree::lineFeeds() const
{
    return root_ ? root_->lineFeeds : 0;
}

qsizetype TextTree::newlines() const
{
    return root_ ? root_->newlines : 0;
}

QChar TextTree::at(qsizetype offset) const
{
    if (offset < 0 || offset >= length()) {
        return {};
    }
    const Node* node = root_.get();
    while (!node->isPiece()) {
        const qsizetype middle = node->left->length;
        const bool goesLeft = offset < middle;
        offset -= goesLeft ? 0 : middle;
        node = goesLeft ? node->left.get() : node->right.get();
    }
    return node->piece.at(offset);
}

QString TextTree::substring(TextRange range) const
{
    range = range.clampedTo(length());
    QString text;
    text.reserve(range.length);
    forEachPiece(range, [&text](QStringView piece) {
        text += piece;
        return true;
    });
    return text;
}

qsizetype TextTree::lineStart(qsizetype line) const
{
    if (line <= 0 || !root_) {
        return 0;
    }
    if (line >= lineCount()) {
        return length();
    }
    // Behind the line's number of line ends. A carriage return at the end of a part is none when a line feed follows.
    qsizetype wanted = line;
    qsizetype before = 0;
    const Node* node = root_.get();
    while (!node->isPiece()) {
        const qsizetype inLeft = node->left->lineEndsBefore(node->partsPair());
        if (wanted <= inLeft) {
            node = node->left.get();
        } else {
            wanted -= inLeft;
            before += node->left->length;
            node = node->right.get();
        }
    }
    return before + behindLineEnd(node->piece, wanted);
}

qsizetype TextTree::lineAt(qsizetype offset) const
{
    offset = std::clamp(offset, qsizetype(0), length());
    if (!root_) {
        return 0;
    }
    // The line ends that end at the offset or before it.
    qsizetype lines = 0;
    bool lineFeedFollows = false;
    const Node* node = root_.get();
    while (!node->isPiece()) {
        const qsizetype middle = node->left->length;
        if (offset < middle) {
            lineFeedFollows = node->right->first == u'\n';
            node = node->left.get();
        } else {
            // What stands before the offset ends here, unless its line feed is still to come.
            lines += node->left->lineEndsBefore(node->partsPair());
            offset -= middle;
            node = node->right.get();
        }
    }
    const QStringView before = QStringView(node->piece).first(offset);
    const bool isCut =
        before.endsWith(u'\r') && (offset < node->length ? node->piece.at(offset) == u'\n' : lineFeedFollows);
    return lines + lineEndsIn(before).count - (isCut ? 1 : 0);
}

qsizetype TextTree::lineFeedsBefore(qsizetype offset) const
{
    offset = std::clamp(offset, qsizetype(0), length());
    if (!root_) {
        return 0;
    }
    qsizetype feeds = 0;
    const Node* node = root_.get();
    while (!node->isPiece()) {
        const qsizetype middle = node->left->length;
        if (offset < middle) {
            node = node->left.get();
        } else {
            feeds += node->left->lineFeeds;
            offset -= middle;
            node = node->right.get();
        }
    }
    return feeds + QStringView(node->piece).first(offset).count(u'\n');
}

qsizetype TextTree::behindLineFeeds(qsizetype count) const
{
    if (count <= 0 || !root_) {
        return 0;
    }
    if (count > lineFeeds()) {
        return length();
    }
    qsizetype before = 0;
    const Node* node = root_.get();
    while (!node->isPiece()) {
        if (count <= node->left->lineFeeds) {
            node = node->left.get();
        } else {
            count -= node->left->lineFeeds;
            before += node->left->length;
            node = node->right.get();
        }
    }
    return before + behindLineFeed(node->piece, count);
}

void TextTree::replace(TextRange range, QStringView replacement)
{
    range = range.clampedTo(length());
    root_ = root_ ? Building::replaced(root_, range.location, range.end(), replacement) : Building::ofText(replacement);
}

void TextTree::replace(TextRange range, const TextTree& replacement)
{
    range = range.clampedTo(length());
    if (root_ && replacement.root_ && replacement.root_->isPiece()) {
        // Short texts go into the piece that is there, or many edits would leave many short pieces.
        root_ = Building::replaced(root_, range.location, range.end(), replacement.root_->piece);
        return;
    }
    root_ = Building::joined(Building::joined(Building::partOf(root_, 0, range.location), replacement.root_),
                             Building::partOf(root_, range.end(), length()));
}

TextTree TextTree::part(TextRange range) const
{
    range = range.clampedTo(length());
    return TextTree(Building::partOf(root_, range.location, range.end()));
}

bool TextTree::forEachPiece(TextRange range, const std::function<bool(QStringView piece)>& look) const
{
    range = range.clampedTo(length());
    return range.length == 0 || Building::forEachPiece(root_, range.location, range.end(), look);
}

bool operator==(const TextTree& a, const TextTree& b)
{
    if (a.root_ == b.root_) {
        return true;
    }
    if (a.length() != b.length()) {
        return false;
    }
    qsizetype offset = 0;
    return a.forEachPiece({0, a.length()}, [&](QStringView piece) {
        const TextRange place{offset, piece.size()};
        offset = place.end();
        return b.forEachPiece(place, [&piece](QStringView other) {
            const QStringView own = piece.first(other.size());
            piece = piece.sliced(other.size());
            return own.data() == other.data() || own == other;
        });
    });
}

bool operator==(const TextTree& a, QStringView b)
{
    return a.length() == b.size() && a.forEachPiece({0, a.length()}, [&b](QStringView piece) {
        const QStringView other = b.first(piece.size());
        b = b.sliced(piece.size());
        return piece == other;
    });
}

qsizetype commonStart(const TextTree& a, const TextTree& b)
{
    return TextTree::Building::common<false>(a.root_, b.root_, std::min(a.length(), b.length()));
}

qsizetype commonEnd(const TextTree& a, const TextTree& b, qsizetype start)
{
    return TextTree::Building::common<true>(a.root_, b.root_, std::min(a.length(), b.length()) - start);
}

int TextTree::height() const
{
    return Building::heightOf(root_) + 1;
}

qsizetype TextTree::pieceCount() const
{
    return Building::pieceCount(root_);
}

} // namespace kelm
