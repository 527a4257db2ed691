#include "Text/Abort.h"
#include "Text/CharacterCase.h"
#include "Text/ExitCode.h"
#include "Text/QuoteTracker.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <algorithm>

/// What names are made of, the dot included.
static bool IsWordCharacter(wchar_t ch) noexcept
{
    return (ch >= L'0' && ch <= L'9') || ch == L'_' || ch == L'.' || ToLower(ch) != ToUpper(ch);
}

static bool IsWordAt(std::wstring_view text, std::size_t index, std::wstring_view word) noexcept
{
    const std::size_t behind = index + word.size();
    return EqualsIgnoreCase(text.substr(index, word.size()), word) &&
        (index == 0 || !IsWordCharacter(text[index - 1])) && (behind == text.size() || !IsWordCharacter(text[behind]));
}

bool WString::TrySplitAtKeyword(const wchar_t* keyword, WString& before, WString& after) const
{
    const std::wstring_view word(keyword);
    QuoteTracker quotes;
    Abort::Watch watch;
    for (std::size_t i = 0; i < length; ++i) {
        watch.Step();
        if (quotes.Next(View().substr(i)) != QuoteTracker::Role::Outside || !IsWordAt(View(), i, word))
            continue;
        WString left = WString(View().substr(0, i)).Trim(); // either result may be this text
        WString right = WString(View().substr(i + word.size())).Trim();
        before = std::move(left);
        after = std::move(right);
        return true;
    }
    return false;
}

bool WString::TryGetListItem(WString& item, unsigned int index, wchar_t separator) const
{
    std::size_t start = 0;
    for (; index > 0; --index) {
        start = View().find(separator, start);
        if (start == std::wstring_view::npos)
            return false;
        ++start;
    }
    const std::size_t end = std::min(View().find(separator, start), length);
    item = WString(View().substr(start, end - start));
    return true;
}

WString WString::StrTok(const wchar_t* separators, std::size_t& position) const
{
    Abort::Watch watch;
    const auto isSeparator = [&, all = std::wstring_view(separators)](wchar_t ch) {
        watch.Step();
        return all.find(ch) != std::wstring_view::npos;
    };
    const wchar_t* start = std::find_if_not(begin() + std::min(position, length), end(), isSeparator);
    const wchar_t* behind = std::find_if(start, end(), isSeparator);
    position = static_cast<std::size_t>(behind - begin());
    return WString(start, static_cast<std::size_t>(behind - start));
}

void WString::GetWStringArray(WStringArray& items, unsigned int minItems, unsigned int maxItems,
    unsigned int exitNumber, unsigned int minLength, unsigned int maxLength, const WString& separators) const
{
    items.Clear();
    const auto add = [&](std::size_t start, std::size_t end) {
        WString piece = WString(View().substr(start, end - start)).Trim();
        if (piece.IsEmpty())
            return;
        if (items.Count() == maxItems || piece.Length() < minLength || piece.Length() > maxLength)
            throw ExitCode(exitNumber);
        items.Add(std::move(piece));
    };
    QuoteTracker quotes;
    Abort::Watch watch;
    std::size_t start = 0;
    for (std::size_t i = 0; i < length; ++i) {
        watch.Step();
        if (quotes.Next(View().substr(i)) != QuoteTracker::Role::Outside ||
            separators.View().find(data[i]) == std::wstring_view::npos)
            continue;
        add(start, i);
        start = i + 1;
    }
    add(start, length);
    if (!items.IsEmpty() && items.Count() < minItems)
        throw ExitCode(exitNumber);
}
