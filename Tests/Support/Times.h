#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// The length of the date, time or duration that the text begins with; 0 when it begins with none.
inline std::size_t GetTimeLength(std::string_view text)
{
    const auto fits = [](char wanted, char ch) { return wanted == '0' ? ch >= '0' && ch <= '9' : ch == wanted; };
    for (const std::string_view form : {"0000-00-00 00:00:00.000", "00:00:00.000"}) {
        const std::string_view start = text.substr(0, form.size());
        if (std::equal(form.begin(), form.end(), start.begin(), start.end(), fits))
            return form.size();
    }
    constexpr std::string_view duration = "time=\"";
    const std::size_t end = text.starts_with(duration) ? text.find('"', duration.size()) : text.npos;
    return end == text.npos ? 0 : end + 1;
}

/// The text with all dates, times and durations in it made alike.
inline std::string HideTimes(const std::string& text)
{
    std::string hidden;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = GetTimeLength(rest);
        hidden += length != 0 ? "TIME" : rest.substr(0, 1);
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return hidden;
}
