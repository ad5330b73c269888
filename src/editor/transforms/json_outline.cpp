#include "editor/transforms/json_outline.h"

#include "editor/transforms/json_key.h"
#include "editor/transforms/json_scanner.h"

#include <QString>

#include <algorithm>
#include <deque>
#include <limits>

namespace kelm {
namespace {

/// Reads a text from its start to its end, level by level on a stack of its own.
class JsonOutlineReader
{
public:
    explicit JsonOutlineReader(QStringView text) : text_(text), units_(text.utf16()), size_(text.size()) {}

    std::optional<JsonOutline> read();

private:
    enum class Expected { value, valueOrEnd, key, keyOrEnd, commaOrEnd, endOfText };

    struct Level
    {
        static constexpr quint32 array = std::numeric_limits<quint32>::max();
        /// The object's number, or `array`.
        quint32 object = array;
        /// Where the object's members begin in `open_`.
        quint32 firstOpen = 0;
        bool isArray() const { return object == array; }
    };

    char16_t peek() const { return at_ < size_ ? units_[at_] : u'\0'; }
    bool take(char16_t unit);
    bool step();
    bool readValue();
    bool readKey();
    bool readSeparator();
    bool openLevel(bool isArray);
    void closeLevel();
    void sortMembers(quint32 firstOpen);
    QStringView keyText(quint32 key, std::deque<QString>& decoded) const;

    QStringView text_;
    const char16_t* units_;
    qsizetype size_;
    qsizetype at_ = 0;
    Expected expected_ = Expected::value;
    std::vector<Level> levels_;
    /// The members of all open objects, the innermost object's last.
    std::vector<JsonOutline::Member> open_;
    JsonOutline outline_;
};

std::optional<JsonOutline> JsonOutlineReader::read()
{
    if (size_ >= std::numeric_limits<quint32>::max()) {
        return {};
    }
    if (peek() == u'\ufeff') {
        ++at_;
    }
    at_ = skipJsonBlanks(text_, at_);
    outline_.start = at_;
    if (peek() != u'{' && peek() != u'[') {
        return {};
    }
    while (expected_ != Expected::endOfText) {
        if (!step()) {
            return {};
        }
        at_ = skipJsonBlanks(text_, at_);
    }
    if (at_ != size_) {
        return {};
    }
    return std::move(outline_);
}

bool JsonOutlineReader::take(char16_t unit)
{
    if (at_ < size_ && units_[at_] == unit) {
        ++at_;
        return true;
    }
    return false;
}

bool JsonOutlineReader::step()
{
    switch (expected_) {
    case Expected::valueOrEnd:
        if (take(u']')) {
            closeLevel();
            return true;
        }
        return readValue();
    case Expected::value:
        return readValue();
    case Expected::keyOrEnd:
        if (take(u'}')) {
            closeLevel();
            return true;
        }
        return readKey();
    case Expected::key:
        return readKey();
    case Expected::commaOrEnd:
        return readSeparator();
    case Expected::endOfText:
        break;
    }
    return false;
}

bool JsonOutlineReader::readValue()
{
    expected_ = Expected::commaOrEnd;
    switch (peek()) {
    case u'{':
        return openLevel(false);
    case u'[':
        return openLevel(true);
    case u'"':
        return readJsonString(text_, at_);
    case u't':
        return readJsonWord(text_, at_, u"true");
    case u'f':
        return readJsonWord(text_, at_, u"false");
    case u'n':
        return readJsonWord(text_, at_, u"null");
    default:
        return readJsonNumber(text_, at_);
    }
}

bool JsonOutlineReader::readKey()
{
    const auto key = quint32(at_);
    if (!readJsonString(text_, at_)) {
        return false;
    }
    at_ = skipJsonBlanks(text_, at_);
    if (!take(u':')) {
        return false;
    }
    at_ = skipJsonBlanks(text_, at_);
    open_.push_back({key, quint32(at_), quint32(outline_.objects.size())});
    expected_ = Expected::value;
    return true;
}

bool JsonOutlineReader::readSeparator()
{
    const bool isArray = levels_.back().isArray();
    if (take(u',')) {
        expected_ = isArray ? Expected::value : Expected::key;
        return true;
    }
    if (take(isArray ? u']' : u'}')) {
        closeLevel();
        return true;
    }
    return false;
}

bool JsonOutlineReader::openLevel(bool isArray)
{
    ++at_;
    if (isArray) {
        levels_.push_back({});
        expected_ = Expected::valueOrEnd;
    } else {
        levels_.push_back({quint32(outline_.objects.size()), quint32(open_.size())});
        outline_.objects.emplace_back();
        expected_ = Expected::keyOrEnd;
    }
    return true;
}

void JsonOutlineReader::closeLevel()
{
    const Level level = levels_.back();
    levels_.pop_back();
    if (!level.isArray()) {
        JsonOutline::Object& object = outline_.objects[level.object];
        object.firstMember = quint32(outline_.members.size());
        sortMembers(level.firstOpen);
        object.memberCount = quint32(outline_.members.size()) - object.firstMember;
        object.end = quint32(at_);
        object.nextObject = quint32(outline_.objects.size());
    }
    expected_ = levels_.empty() ? Expected::endOfText : Expected::commaOrEnd;
}

/// Moves the open members from `firstOpen` on over to the outline, in the order of printing and each key's last one
/// alone.
void JsonOutlineReader::sortMembers(quint32 firstOpen)
{
    if (open_.size() - firstOpen < 2) {
        outline_.members.insert(outline_.members.end(), open_.begin() + firstOpen, open_.end());
        open_.resize(firstOpen);
        return;
    }
    struct Entry
    {
        JsonKey key;
        JsonOutline::Member member;
    };
    std::deque<QString> decoded;
    std::vector<Entry> entries;
    entries.reserve(open_.size() - firstOpen);
    for (size_t i = firstOpen; i < open_.size(); ++i) {
        entries.push_back({JsonKey(keyText(open_[i].key, decoded)), open_[i]});
    }
    open_.resize(firstOpen);
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        const int order = JsonKey::compare(a.key, b.key);
        return order != 0 ? order < 0 : a.member.key < b.member.key;
    });
    for (size_t i = 0; i < entries.size(); ++i) {
        if (i + 1 == entries.size() || entries[i].key.text() != entries[i + 1].key.text()) {
            outline_.members.push_back(entries[i].member);
        }
    }
}

/// What the key says; a key with escapes is decoded into `decoded`.
QStringView JsonOutlineReader::keyText(quint32 key, std::deque<QString>& decoded) const
{
    const qsizetype end = endOfJsonString(text_, key) - 1;
    const QStringView written = text_.sliced(key + 1, end - key - 1);
    if (!written.contains(u'\\')) {
        return written;
    }
    QString& text = decoded.emplace_back();
    for (qsizetype at = key + 1; at < end;) {
        if (units_[at] == u'\\') {
            text += QChar(decodeJsonEscape(text_, at));
        } else {
            text += QChar(units_[at++]);
        }
    }
    return text;
}

} // namespace

std::optional<JsonOutline> JsonOutline::read(QStringView text)
{
    return JsonOutlineReader(text).read();
}

} // namespace kelm
