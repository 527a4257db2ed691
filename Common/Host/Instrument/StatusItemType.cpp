#include "Instrument/StatusItemType.h"

#include "Text/NumberText.h"

#include <cstdint>
#include <limits>

namespace {

template <typename T>
bool IsWhole(const WString& text)
{
    T value = 0;
    return TryParseWhole<T>(text.View(), value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
}

bool IsBool(const WString& text)
{
    bool value = false;
    return text.TryGetBool(value);
}

bool IsDouble(const WString& text)
{
    double value = 0;
    return text.TryParseDouble(value);
}

bool IsExitCode(const WString& text)
{
    ExitCode value;
    return ExitCode::TryParse(text, value);
}

bool IsText(const WString&)
{
    return true;
}

constexpr StatusItemType types_lc[] = {
    {ST_Bool, L"bool", IsBool},
    {ST_Double, L"double", IsDouble},
    {ST_String, L"string", IsText},
    {ST_ExitCode, L"exitcode", IsExitCode},
    {ST_Formatted, L"formatted", IsText},
    {ST_Int, L"int", IsWhole<std::int32_t>},
    {ST_UInt, L"uint", IsWhole<std::uint32_t>},
    {ST_UInt64, L"uint64", IsWhole<std::uint64_t>},
};

} // namespace

const StatusItemType* FindStatusItemType(StatusType type) noexcept
{
    for (const StatusItemType& row : types_lc)
        if (row.type == type)
            return &row;
    return nullptr;
}

bool TryParseStatusItem(const WString& text, StatusType& type, WString& value, WString& reason)
{
    const int colon = text.IndexOf(L":");
    const WString name = text.Left(colon < 0 ? 0 : static_cast<unsigned int>(colon)).Trim();
    const WString rest = text.Substring(static_cast<unsigned int>(colon + 1)).Trim();
    for (const StatusItemType& row : types_lc) {
        if (!name.Equals(row.name, true))
            continue;
        if (!row.fits(rest)) {
            reason = WString::Format(L"\"%s\" is no value of type %s", rest, row.name);
            return false;
        }
        type = row.type;
        value = rest;
        return true;
    }
    reason = WString::Format(L"\"%s\" does not begin with a type and a colon", text);
    return false;
}

StatusType GuessStatusType(const WString& text) noexcept
{
    for (const StatusType type : {ST_Bool, ST_Int, ST_Double})
        if (FindStatusItemType(type)->fits(text))
            return type;
    return ST_String;
}
