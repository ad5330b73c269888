#include "editor/transforms/json_outline.h"

#include "editor/transforms/json_key.h"
#include "platform/text/json_reader.h"

#include <QString>

#include <algorithm>
#include <deque>
#include <limits>

namespace kelm {
namespace {

/// Notes the objects and their members while the library reads the text.
class JsonOutlineBuilder : public JsonHandler<JsonOutlineBuilder>
{
public:
    JsonOutlineBuilder(QStringView text, const JsonStream<JsonUtf16>& stream) : text_(text), stream_(stream) {}

    JsonOutline take() { return std::move(outline_); }

    // The names are those that the library calls.
    // NOLINTBEGIN(readability-identifier-naming)
    bool StartObject();
    bool Key(const char16_t* text, rapidjson::SizeType length, bool copy);
    bool EndObject(rapidjson::SizeType memberCount);
    // NOLINTEND(readability-identifier-naming)

private:
    struct OpenMember
    {
        JsonKey key;
        JsonOutline::Member member;
    };
    struct OpenObject
    {
        quint32 number = 0;
        /// Where its members begin in `members_`, and its keys in `decoded_`.
        size_t firstMember = 0;
        size_t firstDecoded = 0;
    };

    void sortMembers(size_t first);

    QStringView text_;
    const JsonStream<JsonUtf16>& stream_;
    std::vector<OpenObject> open_;
    /// The members of all open objects, the innermost object's last.
    std::vector<OpenMember> members_;
    /// What those of their keys say that are written with escapes.
    std::deque<QString> decoded_;
    JsonOutline outline_;
};

bool JsonOutlineBuilder::StartObject()
{
    open_.push_back({quint32(outline_.objects.size()), members_.size(), decoded_.size()});
    outline_.objects.emplace_back();
    return true;
}

bool JsonOutlineBuilder::Key(const char16_t* text, rapidjson::SizeType length, bool /*copy*/)
{
    const QStringView key(text, length);
    const auto start = qsizetype(stream_.Tell());
    // Escapes make what is written longer than what it says.
    QStringView kept = text_.sliced(start + 1, key.size());
    if (kept != key) {
        kept = decoded_.emplace_back(key.toString());
    }
    members_.push_back({JsonKey(kept), {quint32(start), quint32(outline_.objects.size())}});
    return key.isValidUtf16();
}

bool JsonOutlineBuilder::EndObject(rapidjson::SizeType /*memberCount*/)
{
    const OpenObject closed = open_.back();
    open_.pop_back();
    JsonOutline::Object& object = outline_.objects[closed.number];
    object.firstMember = quint32(outline_.members.size());
    sortMembers(closed.firstMember);
    decoded_.resize(closed.firstDecoded);
    object.memberCount = quint32(outline_.members.size()) - object.firstMember;
    object.end = quint32(stream_.Tell() + 1);
    object.nextObject = quint32(outline_.objects.size());
    return true;
}

/// Moves the members from `first` on over to the outline, in the order of printing and each key's last one alone.
void JsonOutlineBuilder::sortMembers(size_t first)
{
    std::sort(members_.begin() + first, members_.end(), [](const OpenMember& a, const OpenMember& b) {
        const int order = JsonKey::compare(a.key, b.key);
        return order != 0 ? order < 0 : a.member.key < b.member.key;
    });
    for (size_t i = first; i < members_.size(); ++i) {
        if (i + 1 == members_.size() || members_[i].key.text() != members_[i + 1].key.text()) {
            outline_.members.push_back(members_[i].member);
        }
    }
    members_.erase(members_.begin() + first, members_.end());
}

} // namespace

std::optional<JsonOutline> JsonOutline::read(QStringView text)
{
    if (text.size() >= std::numeric_limits<quint32>::max()) {
        return {};
    }
    JsonStream<JsonUtf16> stream(text.utf16(), text.utf16() + text.size());
    if (stream.Peek() == u'\ufeff') {
        stream.Take();
    }
    rapidjson::SkipWhitespace(stream);
    const auto start = qsizetype(stream.Tell());
    if (stream.Peek() != u'{' && stream.Peek() != u'[') {
        return {};
    }
    JsonOutlineBuilder builder(text, stream);
    if (!readJson(stream, builder)) {
        return {};
    }
    JsonOutline outline = builder.take();
    outline.start = start;
    return outline;
}

} // namespace kelm
