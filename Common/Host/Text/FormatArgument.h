#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>

class WString;

/// One typed argument of WString::Format. Refers to texts without copying them, so it lives no longer than the call.
class FormatArgument
{
public:
    enum class Kind
    {
        None,
        Signed,
        Unsigned,
        Double,
        Text
    };

    FormatArgument() = default;
    template <std::signed_integral T>
    FormatArgument(T value)
        : kind(Kind::Signed),
          signedValue(value),
          unsignedValue(std::bit_cast<std::make_unsigned_t<decltype(+value)>>(+value))
    {}
    template <std::unsigned_integral T>
    FormatArgument(T value) : kind(Kind::Unsigned), unsignedValue(value)
    {}
    FormatArgument(double value) : kind(Kind::Double), doubleValue(value) {}
    FormatArgument(const wchar_t* value) : kind(Kind::Text), text(value ? value : L"") {}
    FormatArgument(const WString& value); // WString.h: the class is incomplete here

    Kind kind = Kind::None;
    long long signedValue = 0;
    unsigned long long unsignedValue = 0; // of a negative number its bits in its own width, as %x and %u print them
    double doubleValue = 0;
    std::wstring_view text;
};
