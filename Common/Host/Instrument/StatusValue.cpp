#include "Instrument/StatusValue.h"

#include "Text/NumberText.h"

static bool IsIntegerType(StatusType type)
{
    return type == ST_Int || type == ST_UInt || type == ST_UInt64;
}

bool StatusValue::TryGetBool(bool& value) const
{
    return type == ST_Bool && text && text->TryGetBool(value);
}

bool StatusValue::TryGetDouble(double& value, double min, double max) const
{
    return type == ST_Double && text && text->TryParseDouble(value, min, max);
}

bool StatusValue::TryGetString(WString& value) const
{
    return type == ST_String && TryGetFormattedString(value);
}

bool StatusValue::TryGetExitCode(ExitCode& value) const
{
    return type == ST_ExitCode && text && ExitCode::TryParse(*text, value);
}

bool StatusValue::TryGetInt(int& value, int min, int max) const
{
    return IsIntegerType(type) && text && TryParseWhole(text->View(), value, min, max);
}

bool StatusValue::TryGetUInt(unsigned int& value, unsigned int min, unsigned int max) const
{
    return IsIntegerType(type) && text && TryParseWhole(text->View(), value, min, max);
}

bool StatusValue::TryGetFormattedString(WString& value) const
{
    if (text)
        value = *text;
    return text.has_value();
}
