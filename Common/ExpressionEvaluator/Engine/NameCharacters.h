#pragma once

#include "Text/WString.h"

#include <array>
#include <memory>
#include <string>

/// The set of characters that names may consist of. Never changed once made, so that evaluators share it.
class NameCharacters
{
public:
    /// The characters as given.
    explicit NameCharacters(const WString& chars);

    /// Letters, digits, "_" and ".".
    static const std::shared_ptr<const NameCharacters>& Default();
    /// Both cases of the characters given, without those that an expression needs between names.
    static std::shared_ptr<const NameCharacters> FromUserSet(const wchar_t* chars);

    bool Contains(wchar_t ch) const noexcept
    {
        const auto code = std::char_traits<wchar_t>::to_int_type(ch); // unsigned on every platform
        return code < ascii.size() ? ascii[code] : ContainsOther(ch);
    }

private:
    WString chars;
    std::array<bool, 128> ascii{};

    bool ContainsOther(wchar_t ch) const noexcept { return chars.View().find(ch) != std::wstring_view::npos; }
};
