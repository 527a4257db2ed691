#include "Services/DateTime.h"

#include <algorithm>
#include <chrono>
#include <ctime>

using namespace std::chrono;

static constexpr sys_days dayZero = 1899y / December / 30;

static constexpr int ToDayNumber(year_month_day date)
{
    return static_cast<int>((sys_days(date) - dayZero).count());
}

DateTime DateTime::Now()
{
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    DateTime result;
    result.TrySetValue((local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 + local.tm_mday,
        local.tm_hour * 10000 + local.tm_min * 100 +
            std::min(local.tm_sec, 59)); // a leap second counts as the one before
    return result;
}

bool DateTime::TrySetValue(int date, int time)
{
    static_assert(firstDay == ToDayNumber(1601y / January / 1) && lastDay == ToDayNumber(9999y / December / 31));
    if (date < 16010101 || date > 99991231 || time < 0)
        return false;
    const year_month_day asked = year(date / 10000) / (date / 100 % 100) / (date % 100);
    const int hours = time / 10000;
    const int minutes = time / 100 % 100;
    if (!asked.ok() || hours > 23 || minutes > 59 || time % 100 > 59)
        return false;
    days = ToDayNumber(asked);
    seconds = (hours * 60 + minutes) * 60 + time % 100;
    return true;
}

DateTime DateTime::FromDays(int days) noexcept
{
    DateTime result;
    result.days = std::clamp(days, firstDay, lastDay);
    return result;
}

int DateTime::ToDateInt() const noexcept
{
    const year_month_day date(dayZero + std::chrono::days(days));
    const unsigned int monthAndDay =
        static_cast<unsigned int>(date.month()) * 100 + static_cast<unsigned int>(date.day());
    return static_cast<int>(date.year()) * 10000 + static_cast<int>(monthAndDay);
}

int DateTime::ToTimeInt() const noexcept
{
    return seconds / 3600 * 10000 + seconds / 60 % 60 * 100 + seconds % 60;
}
