#pragma once

#include "HostApi.h"

/// A calendar date from 1601-01-01 to 9999-12-31 with a time of day. Day numbers count from 30-Dec-1899, day 0.
class HOST_API DateTime
{
public:
    DateTime() = default; // 1601-01-01

    static DateTime Now(); // local time

    /// Sets the date from YYYYMMDD and the time from HHMMSS; false, and unchanged, when either does not exist.
    bool TrySetValue(int date, int time);
    int ToDays() const noexcept { return days; }
    static bool IsDaysValid(int days) noexcept { return days >= firstDay && days <= lastDay; }
    static DateTime FromDays(int days) noexcept; // the nearest valid day for any other
    int ToDateInt() const noexcept;              // YYYYMMDD
    int ToTimeInt() const noexcept;              // HHMMSS

private:
    static constexpr int firstDay = -109205; // 1601-01-01
    static constexpr int lastDay = 2958465;  // 9999-12-31

    int days = firstDay;
    int seconds = 0; // since midnight
};
