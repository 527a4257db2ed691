#pragma once

#include <regex>
#include <string>

/// The text with all dates, times and durations in it made alike.
inline std::string HideTimes(const std::string& text)
{
    static const std::regex time(
        R"(([0-9]{4}-[0-9]{2}-[0-9]{2} )?[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}|time="[0-9.]+")");
    return std::regex_replace(text, time, "TIME");
}
