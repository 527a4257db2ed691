#pragma once

#include <string_view>
#include <utility>

/// Tells the text outside double quotes from that inside, character by character. Inside, a backslash before a quote or
/// a backslash takes that character along, so that a quote written \" ends nothing.
class QuoteTracker
{
public:
    enum class Role
    {
        Outside,
        Inside,
        Quote,
        Escape // a backslash that takes the next character along
    };

    /// The role of the first character of `rest`, which is not empty and starts one character later at every call.
    Role Next(std::wstring_view rest) noexcept
    {
        if (std::exchange(isTakenAlong, false))
            return Role::Inside;
        if (rest.front() == L'"') {
            inside = !inside;
            return Role::Quote;
        }
        if (!inside)
            return Role::Outside;
        isTakenAlong = rest.starts_with(LR"(\")") || rest.starts_with(LR"(\\)");
        return isTakenAlong ? Role::Escape : Role::Inside;
    }

    bool IsInside() const noexcept { return inside; }

private:
    bool inside = false;
    bool isTakenAlong = false;
};
