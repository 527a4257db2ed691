#include "Text/ExitCode.h"

#include "Text/NumberText.h"

#include <cstdint>
#include <cwchar>
#include <iterator>
#include <limits>
#include <string>

WString ExitCode::ToString() const
{
    return WString::Format(L"%u:%u:%u", commandId, module, number);
}

const wchar_t* ExitCode::ToCString() const
{
    constexpr std::size_t longest = std::char_traits<char>::length("65535:65535:4294967295");
    static thread_local constinit wchar_t slots[8][longest + 1] = {};
    static thread_local constinit std::size_t next = 0;
    wchar_t* const slot = slots[next];
    next = (next + 1) % std::size(slots);
    const WString text = ToString();
    std::wmemcpy(slot, text.ToCString(), text.Length() + 1);
    return slot;
}

bool ExitCode::TryParse(const WString& text, ExitCode& code)
{
    const std::wstring_view view = text.View();
    const std::size_t first = view.find(L':');
    if (first == std::wstring_view::npos)
        return false;
    const std::size_t second = view.find(L':', first + 1);
    if (second == std::wstring_view::npos)
        return false;
    constexpr unsigned int max16 = std::numeric_limits<std::uint16_t>::max();
    unsigned int id = 0;
    unsigned int moduleNumber = 0;
    unsigned int errorNumber = 0;
    if (!TryReadUnsigned(view.substr(0, first), 10, max16, id) ||
        !TryReadUnsigned(view.substr(first + 1, second - first - 1), 10, max16, moduleNumber) ||
        !TryReadUnsigned(view.substr(second + 1), 10, std::numeric_limits<std::uint32_t>::max(), errorNumber))
        return false;
    code = ExitCode(static_cast<std::uint16_t>(id), static_cast<std::uint16_t>(moduleNumber), errorNumber);
    return true;
}
