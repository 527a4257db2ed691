#pragma once

#include "Text/WString.h"

/// The time on the wall, as "13:14:15.678".
WString FormatTime();
/// The same behind the date, as "2026-05-04 13:14:15.678".
WString FormatDateAndTime();
