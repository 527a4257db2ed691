#include "LocalTime.h"

#include <chrono>
#include <ctime>

static WString Format(const char* pattern)
{
    const auto now = std::chrono::system_clock::now();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[sizeof "2026-05-04 13:14:15"];
    const std::size_t length = std::strftime(text, sizeof text, pattern, &local);
    return WString::FromUtf8({text, length}) + WString::Format(L".%03d", static_cast<int>(milliseconds.count() % 1000));
}

WString FormatTime()
{
    return Format("%H:%M:%S");
}

WString FormatDateAndTime()
{
    return Format("%Y-%m-%d %H:%M:%S");
}
