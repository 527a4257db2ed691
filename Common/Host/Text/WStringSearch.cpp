#include "Text/CharacterCase.h"
#include "Text/WString.h"

#include <climits>
#include <vector>

bool WString::Equals(std::wstring_view other, bool ignoreCase) const noexcept
{
    return ignoreCase ? EqualsIgnoreCase(View(), other) : View() == other;
}

bool WString::StartsWith(const WString& prefix, bool ignoreCase) const noexcept
{
    return length >= prefix.length && prefix.Equals(View().substr(0, prefix.length), ignoreCase);
}

bool WString::EndsWith(const WString& suffix, bool ignoreCase) const noexcept
{
    return length >= suffix.length && suffix.Equals(View().substr(length - suffix.length), ignoreCase);
}

namespace {
/// Finds one text in others, in time linear in both (Knuth, Morris, Pratt: Fast Pattern Matching in Strings, 1977):
/// texts come from users, and none may make a search take the product of the two lengths.
class Finder
{
public:
    explicit Finder(std::wstring_view wanted) : wanted(wanted), borders(wanted.size())
    {
        for (std::size_t i = 1; i < wanted.size(); ++i)
            borders[i] = Extend(i > 1 ? borders[i - 1] : 0, wanted[i]);
    }

    /// The first place at or after `start`, or npos.
    std::size_t Find(std::wstring_view text, std::size_t start) const
    {
        std::size_t matched = 0;
        for (std::size_t i = start; i < text.size(); ++i) {
            matched = Extend(matched, text[i]);
            if (matched == wanted.size())
                return i + 1 - matched;
        }
        return std::wstring_view::npos;
    }

private:
    std::wstring_view wanted;
    std::vector<std::size_t> borders; // of each prefix: how long a proper prefix of it ends it

    /// How much of the wanted text stands before and with `ch`, when `matched` of it stood before.
    std::size_t Extend(std::size_t matched, wchar_t ch) const
    {
        while (matched > 0 && wanted[matched] != ch)
            matched = borders[matched - 1];
        return wanted[matched] == ch ? matched + 1 : 0;
    }
};
} // namespace

int WString::IndexOf(const WString& find, int start) const
{
    const std::size_t begin = start > 0 ? static_cast<std::size_t>(start) : 0;
    if (find.IsEmpty())
        return begin <= length && begin <= INT_MAX ? static_cast<int>(begin) : -1;
    const std::size_t index = Finder(find.View()).Find(View(), begin);
    if (index == std::wstring_view::npos)
        return -1;
    return index < INT_MAX ? static_cast<int>(index) : INT_MAX;
}

void WString::Replace(const WString& find, const WString& with, bool ignoreCase)
{
    if (find.IsEmpty())
        return;
    // Case mapping is one to one, so an index into the lower-case text is one into this text.
    const WString text = ignoreCase ? ToLowerCase() : *this;
    const WString wanted = ignoreCase ? find.ToLowerCase() : find;
    const Finder finder(wanted.View());
    WString result;
    std::size_t done = 0;
    for (std::size_t index; (index = finder.Find(text.View(), done)) != std::wstring_view::npos;) {
        result.Append(data + done, index - done);
        result += with;
        done = index + wanted.length;
    }
    result.Append(data + done, length - done);
    *this = std::move(result);
}

bool WString::IsWildcardMatch(const wchar_t* pattern, bool ignoreCase) const noexcept
{
    const auto matches = [ignoreCase](wchar_t wanted, wchar_t ch) {
        return wanted == L'?' || wanted == ch || (ignoreCase && ToLower(wanted) == ToLower(ch));
    };
    // On a mismatch the latest star takes one more character; what an earlier star took never needs to change.
    const wchar_t* behindStar = nullptr;
    const wchar_t* retry = nullptr;
    for (const wchar_t* text = begin(); text != end();) {
        if (*pattern == L'*') {
            behindStar = ++pattern;
            retry = text;
        } else if (*pattern != 0 && matches(*pattern, *text)) {
            ++pattern;
            ++text;
        } else if (behindStar) {
            pattern = behindStar;
            text = ++retry;
        } else {
            return false;
        }
    }
    while (*pattern == L'*')
        ++pattern;
    return *pattern == 0;
}
