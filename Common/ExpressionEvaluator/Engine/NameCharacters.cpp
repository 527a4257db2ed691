#include "NameCharacters.h"

#include "Text/CharacterCase.h"

NameCharacters::NameCharacters(const WString& chars) : chars(chars)
{
    for (const wchar_t ch : chars) {
        const auto code = std::char_traits<wchar_t>::to_int_type(ch);
        if (code != 0 && code < ascii.size())
            ascii[code] = true;
    }
}

const std::shared_ptr<const NameCharacters>& NameCharacters::Default()
{
    static const auto characters = std::make_shared<const NameCharacters>(
        WString(L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789."));
    return characters;
}

std::shared_ptr<const NameCharacters> NameCharacters::FromUserSet(const wchar_t* chars)
{
    constexpr std::wstring_view separators = L" ()*+,-/<=>";
    WString set;
    for (const wchar_t ch : WString(chars))
        if (separators.find(ch) == std::wstring_view::npos) {
            set.Append(ToUpper(ch));
            set.Append(ToLower(ch));
        }
    return std::make_shared<const NameCharacters>(set);
}
