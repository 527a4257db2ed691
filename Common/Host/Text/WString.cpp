#include "Text/WString.h"

#include "Text/Abort.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <algorithm>

WString::WString(std::size_t count, wchar_t ch)
{
    if (count > capacity)
        Reserve(count);
    std::wmemset(data, ch, count);
    data[count] = 0;
    length = count;
}

/// Doubling keeps repeated appending linear.
static std::size_t GrownCapacity(std::size_t capacity, std::size_t needed)
{
    if (needed > WString::maxLength)
        throw HostException(HostError::TextTooLong);
    return std::max(needed, std::min(capacity * 2, WString::maxLength));
}

/// Makes room for `count` characters and keeps the text. Whatever copies long texts or builds one comes by here.
void WString::Reserve(std::size_t count)
{
    if (count > Abort::interval)
        Abort::ThrowIfRequested();
    const std::size_t grownCapacity = GrownCapacity(capacity, count);
    wchar_t* grown = new wchar_t[grownCapacity + 1];
    std::wmemcpy(grown, data, length + 1);
    Free();
    data = grown;
    capacity = grownCapacity;
}

void WString::Append(const wchar_t* text, std::size_t count)
{
    if (count == 0)
        return;
    if (count > capacity - length) {
        WString grown; // beside this one, since text may be part of it
        grown.Reserve(GrownCapacity(capacity, length + count));
        grown.Append(data, length);
        grown.Append(text, count);
        *this = std::move(grown);
        return;
    }
    std::wmemmove(data + length, text, count);
    length += count;
    data[length] = 0;
}

void WString::AppendWithSeparator(const WString& text, const wchar_t* separator)
{
    if (!IsEmpty())
        *this += separator;
    *this += text;
}

WString WString::Left(unsigned int count) const
{
    return WString(View().substr(0, count));
}

WString WString::Right(unsigned int count) const
{
    return WString(View().substr(length - std::min<std::size_t>(count, length)));
}

WString WString::Substring(unsigned int start, int count) const
{
    if (start >= length)
        return WString();
    return WString(View().substr(start, count < 0 ? std::wstring_view::npos : static_cast<std::size_t>(count)));
}

WString WString::ToUpperCase() const
{
    WString result(*this);
    Abort::Watch watch;
    std::transform(begin(), end(), result.data, [&](wchar_t ch) { return watch.Step(), ToUpper(ch); });
    return result;
}

WString WString::ToLowerCase() const
{
    WString result(*this);
    Abort::Watch watch;
    std::transform(begin(), end(), result.data, [&](wchar_t ch) { return watch.Step(), ToLower(ch); });
    return result;
}

WString WString::Trim() const
{
    Abort::Watch watch;
    const auto isWhiteSpace = [&](wchar_t ch) { return watch.Step(), IsWhiteSpace(ch); };
    const wchar_t* first = std::find_if_not(begin(), end(), isWhiteSpace);
    const wchar_t* last = end();
    while (last != first && isWhiteSpace(last[-1]))
        --last;
    return WString(first, static_cast<std::size_t>(last - first));
}
