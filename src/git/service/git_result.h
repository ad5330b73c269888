// What came of one git operation.
#pragma once

#include <QString>

#include <optional>

namespace kelm {

/// Success, or a failure with git's or the system's words for the user.
class GitOpResult
{
public:
    static GitOpResult success() { return {}; }
    static GitOpResult failure(QString message)
    {
        GitOpResult result;
        result.message_ = std::move(message);
        return result;
    }

    bool isSuccess() const { return !message_.has_value(); }
    /// The words of a failure; empty for a success.
    QString message() const { return message_.value_or(QString()); }

    bool operator==(const GitOpResult&) const = default;

private:
    GitOpResult() = default;

    std::optional<QString> message_;
};

} // namespace kelm
