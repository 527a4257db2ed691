#pragma once

#include "HostApi.h"
#include "Text/ExitCode.h"
#include "Text/WString.h"

#include <limits>
#include <optional>

/// Item types of the status table, with the numbers that its readers see.
enum StatusType : int
{
    ST_None = 0,
    ST_Bool = 1,
    ST_Double = 2,
    ST_String = 3,
    ST_ExitCode = 4,
    ST_Formatted = 5, // a text made of other items: "%S{name}" in it stands for that item's value
    ST_Int = 0x801,
    ST_UInt = 0x802,
    ST_UInt64 = 0x804 // counters; read as unsigned 32-bit by those who ask for that
};

/// What a status item was when it was read. The Try operations return false, and write nothing, when it is of another
/// type or out of range; TryGetInt and TryGetUInt read all the integer types.
struct HOST_API StatusValue
{
    StatusType type = ST_None;
    std::optional<WString> text; // none for a formatted item that cannot be made up

    bool TryGetBool(bool& value) const;
    bool TryGetDouble(double& value, double min = std::numeric_limits<double>::lowest(),
        double max = std::numeric_limits<double>::max()) const;
    bool TryGetString(WString& value) const;
    bool TryGetExitCode(ExitCode& value) const;
    bool TryGetInt(int& value, int min, int max) const;
    bool TryGetUInt(unsigned int& value, unsigned int min, unsigned int max) const;
    /// The text of an item of any type.
    bool TryGetFormattedString(WString& value) const;
};
