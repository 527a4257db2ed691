#include "Text/NumberText.h"
#include "Text/WString.h"

bool WString::TryParseDouble(double& value, double min, double max) const
{
    return TryReadDecimal(begin(), end(), value, min, max);
}

bool WString::TryGetHexUInt(unsigned int& value, unsigned int min, unsigned int max, WString* error) const
{
    if (TryReadHexadecimal(View(), value, min, max))
        return true;
    if (error)
        *error = Format(L"\"%s\" is not a hexadecimal number from %x to %x", *this, min, max);
    return false;
}

bool WString::TryGetBool(bool& value) const
{
    return TryReadBool(View(), value);
}

bool WString::TryGetVersion(unsigned long long& value) const
{
    return TryReadVersion(View(), value);
}
