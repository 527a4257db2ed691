#include "EEToken.h"

#include "Containers/CriticalSection.h"
#include "Item.h"

#include <cstddef>
#include <iterator>

const wchar_t* EEToken::GetString(bool convert) const
{
    static CriticalSection section;
    static WString ring[10];
    static std::size_t last = 0;

    const WString value = GetWString(convert);
    const SyncLock lock(section);
    last = (last + 1) % std::size(ring);
    ring[last] = value;
    return ring[last].ToCString();
}

WString EEToken::ToString() const
{
    if (type != TT_OPERAND)
        return type == TT_NONE || text.IsEmpty() ? WString(L"#UnknownVariable") : text;
    if (dataType == DT_BOOL || dataType == DT_STR || dataType == DT_NUM) {
        NumberBuffer buffer;
        return WString(GetValueText(AsItem(), buffer));
    }
    if (!text.IsEmpty())
        return text;
    return dataType != DT_NONE ? WString::Format(L"#DT=%d", dataType) : WString(L"#NA1");
}

namespace {
struct NameOfValue
{
    int value;
    const wchar_t* name;
};

constexpr NameOfValue tokenTypeNames_lc[] = {
    {TT_NONE, L"TT_NONE"},
    {TT_END, L"TT_END"},
    {TT_LEFTP, L"TT_LEFTP"},
    {TT_RIGHTP, L"TT_RIGHTP"},
    {TT_UNARYOP, L"TT_UNARYOP"},
    {TT_BINARYOP, L"TT_BINARYOP"},
    {TT_DUALOP, L"TT_DUALOP"},
    {TT_FUNCOP, L"TT_FUNCOP"},
    {TT_OPERAND, L"TT_OPERAND"},
    {TT_PRMLIST, L"TT_PRMLIST"},
    {TT_PRMSEP, L"TT_PRMSEP"},
};

constexpr NameOfValue dataTypeNames_lc[] = {
    {DT_NONE, L"DT_NONE"},
    {DT_NUM, L"DT_NUM"},
    {DT_BOOL, L"DT_BOOL"},
    {DT_STR, L"DT_STR"},
    {DT_NUMSTR, L"DT_NUMSTR"},
};

template <std::size_t count>
WString NameOf(int value, const NameOfValue (&names)[count])
{
    for (const NameOfValue& row : names) {
        if (row.value == value)
            return row.name;
    }
    return WString::Format(L"#Unk(%d)", value);
}
} // namespace

WString EEToken::GetDumpString() const
{
    const WString dataTypeName = dataType == DT_ERR
        ? WString::Format(L"DT_ERR (missingVar=%d)", missingVariable ? 1 : 0)
        : NameOf(dataType, dataTypeNames_lc);
    WString dump = L"Type: " + NameOf(type, tokenTypeNames_lc);
    dump += L", DataType: " + dataTypeName;
    dump += type == TT_OPERAND ? L", Value: " + ToString() : L", " + text;
    return dump;
}
