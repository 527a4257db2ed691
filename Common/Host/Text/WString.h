#pragma once

#include "HostApi.h"
#include "Text/FormatArgument.h"

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <limits>
#include <string>
#include <string_view>

class WStringArray;

/// Wide text with value semantics: no copy shares storage with its source. Texts of up to 15 characters live inside
/// the object, so that tokens are made and copied without an allocation. Indexes and lengths count characters; what
/// would become longer than 2^24 of them throws HostException(HostError::TextTooLong). Operations on case use the
/// one-to-one mappings of CharacterCase.h and never the locale of the process; neither do numbers. Operations on texts
/// longer than Abort::interval throw HostException(HostError::Aborted) when an abort is requested, unless they are
/// noexcept.
class HOST_API WString
{
public:
    static constexpr std::size_t inlineCapacity = 15;
    static constexpr std::size_t maxLength = 1u << 24; // a text that keeps doubling must not eat the memory

    WString() noexcept = default;
    WString(const wchar_t* text) { Assign(text, text ? std::wcslen(text) : 0); } // a null pointer gives an empty text
    WString(const wchar_t* text, std::size_t count) { Assign(text, count); }
    WString(std::size_t count, wchar_t ch);
    explicit WString(std::wstring_view text) { Assign(text.data(), text.size()); }
    WString(const WString& other) { *this = other; }
    WString(WString&& other) noexcept { Take(other); }
    ~WString() { Free(); }

    WString& operator=(const WString& other);
    WString& operator=(WString&& other) noexcept;
    WString& operator=(const wchar_t* text);

    /// The text as UTF-8, and text from UTF-8; a byte sequence that is not UTF-8 becomes U+FFFD.
    static WString FromUtf8(std::string_view text);
    std::string ToUtf8() const;

    /// Formats as printf does: flags "-", "+", "0" and blank, width and precision up to 4096, conversions d, i, u, x,
    /// X, c, s, f, e, g and %%. The arguments are typed: no length letters are needed, %s takes a WString or a wide
    /// text, and what does not fit throws std::exception instead of reading astray. Infinite values print as "inf"
    /// and "-inf", all others that are no numbers as "nan". Never depends on a locale.
    template <typename... Arguments>
    static WString Format(const wchar_t* format, const Arguments&... arguments)
    {
        WString result;
        result.AppendFormat(format, arguments...);
        return result;
    }

    template <typename... Arguments>
    void AppendFormat(const wchar_t* format, const Arguments&... arguments)
    {
        const FormatArgument list[sizeof...(Arguments) + 1] = {FormatArgument(arguments)..., FormatArgument()};
        AppendFormatted(format, list, sizeof...(Arguments));
    }

    const wchar_t* ToCString() const noexcept { return data; }
    std::size_t Length() const noexcept { return length; }
    bool IsEmpty() const noexcept { return length == 0; }
    std::wstring_view View() const noexcept { return {data, length}; }
    wchar_t operator[](std::size_t index) const noexcept { return data[index]; }
    const wchar_t* begin() const noexcept { return data; }
    const wchar_t* end() const noexcept { return data + length; }

    void Clear() noexcept;
    void Assign(const wchar_t* text, std::size_t count);
    void Append(const wchar_t* text, std::size_t count);
    void Append(std::wstring_view text) { Append(text.data(), text.size()); }
    void Append(wchar_t ch);
    WString& operator+=(const WString& text) { return Append(text.data, text.length), *this; }
    WString& operator+=(const wchar_t* text) { return Append(std::wstring_view(text)), *this; }
    WString& operator+=(wchar_t ch) { return Append(ch), *this; }

    /// Appends `text`, with `separator` before it unless this text is empty.
    void AppendWithSeparator(const WString& text, const wchar_t* separator);

    bool operator==(const WString& other) const noexcept { return View() == other.View(); }
    bool operator==(const wchar_t* other) const noexcept { return View() == std::wstring_view(other); }
    auto operator<=>(const WString& other) const noexcept { return View() <=> other.View(); }
    bool Equals(std::wstring_view other, bool ignoreCase) const;
    bool StartsWith(const WString& prefix, bool ignoreCase) const;
    bool EndsWith(const WString& suffix, bool ignoreCase) const;

    /// The index of the first occurrence of `find` at or after `start`, or -1. A negative start counts as 0; an empty
    /// text is found at the start index as long as that lies within the text or at its end.
    int IndexOf(const WString& find, int start = 0) const;

    WString Left(unsigned int count) const;
    WString Right(unsigned int count) const;
    /// `count` characters from `start`, fewer where the text ends; -1 means up to the end. A start beyond the end
    /// gives "".
    WString Substring(unsigned int start, int count = -1) const;
    WString ToUpperCase() const;
    WString ToLowerCase() const;
    /// Without the white space at both ends.
    WString Trim() const;

    /// Replaces every occurrence of `find`, left to right and non-overlapping; an empty `find` changes nothing.
    void Replace(const WString& find, const WString& with, bool ignoreCase);

    /// True when the whole text matches: `*` stands for any run of characters, `?` for one. Takes time linear in both
    /// lengths; a piece between two stars that holds a `?` takes the text's length times its own at worst.
    bool IsWildcardMatch(const wchar_t* pattern, bool ignoreCase) const;

    /// The whole text as a decimal number within [min, max]: optional sign, digits with optional fraction ("5." and
    /// ".5" too) and exponent; no blanks, hexadecimal, "inf" or "nan". Without limits any finite number serves. `value`
    /// is written on success only, as in all Try operations here.
    bool TryParseDouble(double& value, double min = std::numeric_limits<double>::lowest(),
        double max = std::numeric_limits<double>::max()) const;
    /// The whole text as a hexadecimal number within [min, max]: optional "0x", digits of either case. `error`, when
    /// given, receives the reason for a refusal.
    bool TryGetHexUInt(unsigned int& value, unsigned int min, unsigned int max, WString* error = nullptr) const;
    /// "true" or "false" in any case.
    bool TryGetBool(bool& value) const;
    /// One to four numbers of 0 to 65535 separated by dots, 16 bits each, the first one uppermost.
    bool TryGetVersion(unsigned long long& value) const;

    /// The item at the zero-based `index` of a list, as it stands between its separators.
    bool TryGetListItem(WString& item, unsigned int index, wchar_t separator) const;
    /// Splits at the first occurrence of `keyword` outside double quotes, as a whole word in any case; both sides are
    /// trimmed, and either may be put into this text. A word consists of letters, digits, "_" and ".". Inside quotes a
    /// backslash before a quote or a backslash takes that character along, so that \" ends nothing.
    bool TrySplitAtKeyword(const wchar_t* keyword, WString& before, WString& after) const;
    /// Splits outside double quotes, as above, at any of `separators`, trims the pieces and drops empty ones. A text
    /// without any piece gives an empty array. Otherwise throws ExitCode(exitNumber) when there are fewer than
    /// `minItems` or more than `maxItems` pieces, or one is shorter than `minLength` or longer than `maxLength`.
    void GetWStringArray(WStringArray& items, unsigned int minItems, unsigned int maxItems, unsigned int exitNumber,
        unsigned int minLength, unsigned int maxLength, const WString& separators) const;
    /// The next piece of this text at `position`, which then stands behind the piece. Runs of separators count as one;
    /// only the end of the text yields an empty piece.
    WString StrTok(const wchar_t* separators, std::size_t& position) const;

private:
    wchar_t* data = inlineText;
    std::size_t length = 0;
    std::size_t capacity = inlineCapacity;
    wchar_t inlineText[inlineCapacity + 1] = {};

    void AppendFormatted(const wchar_t* format, const FormatArgument* arguments, std::size_t count);
    void Reserve(std::size_t count);
    void Free() noexcept
    {
        if (data != inlineText)
            delete[] data;
    }
    void Take(WString& other) noexcept;
    /// Every storage holds as many characters as the inline one, so a short text is copied in a fixed number of moves.
    static void CopyShort(wchar_t* to, const wchar_t* from) noexcept { std::memcpy(to, from, sizeof inlineText); }
};

inline FormatArgument::FormatArgument(const WString& value) : kind(Kind::Text), text(value.View()) {}

inline WString operator+(WString left, const WString& right)
{
    left += right;
    return left;
}

inline void WString::Assign(const wchar_t* text, std::size_t count)
{
    if (count > capacity)
        Reserve(count);
    if (count != 0) // text may be part of this one
        std::wmemmove(data, text, count);
    data[count] = 0;
    length = count;
}

inline void WString::Append(wchar_t ch)
{
    if (length == capacity)
        Reserve(length + 1);
    data[length++] = ch;
    data[length] = 0;
}

inline WString& WString::operator=(const WString& other)
{
    if (this == &other)
        return *this;
    if (other.length > inlineCapacity) {
        Assign(other.data, other.length);
        return *this;
    }
    CopyShort(data, other.data);
    length = other.length;
    return *this;
}

inline WString& WString::operator=(WString&& other) noexcept
{
    if (this != &other) {
        Free();
        Take(other);
    }
    return *this;
}

inline WString& WString::operator=(const wchar_t* text)
{
    Assign(text, text ? std::wcslen(text) : 0);
    return *this;
}

inline void WString::Clear() noexcept
{
    data[0] = 0;
    length = 0;
}

/// Moves the text of `other`, which is left empty, into storage that has been freed or never filled.
inline void WString::Take(WString& other) noexcept
{
    if (other.data == other.inlineText) {
        CopyShort(inlineText, other.inlineText);
        data = inlineText;
        capacity = inlineCapacity;
    } else {
        data = other.data;
        capacity = other.capacity;
        other.data = other.inlineText;
        other.capacity = inlineCapacity;
    }
    length = other.length;
    other.Clear();
}
