#pragma once

#include "HostApi.h"
#include "Instrument/StatusTable.h"

/// A type of status item: its name in the status file, and the test that a value's text passes.
struct StatusItemType
{
    StatusType type;
    const wchar_t* name;
    bool (*fits)(const WString& text);
};

/// The row of a type, or null.
HOST_API const StatusItemType* FindStatusItemType(StatusType type) noexcept;

/// Splits "type:value", the type's name in any case; false, with the reason, when there is no such type or the value
/// does not fit.
bool TryParseStatusItem(const WString& text, StatusType& type, WString& value, WString& reason);

/// The type read off a value: true or false a boolean, a whole number an integer, another number a double, else a
/// string.
StatusType GuessStatusType(const WString& text) noexcept;
