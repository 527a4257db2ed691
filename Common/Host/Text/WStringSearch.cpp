#include "Text/Abort.h"
#include "Text/CharacterCase.h"
#include "Text/WString.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace {
/// Compares single characters for an operation on texts that an abort may end.
class Comparison
{
public:
    explicit Comparison(bool ignoreCase) : ignoreCase(ignoreCase) {}

    bool AreSame(wchar_t left, wchar_t right)
    {
        watch.Step();
        return left == right || (ignoreCase && ToLower(left) == ToLower(right));
    }

private:
    const bool ignoreCase;
    Abort::Watch watch;
};

/// Finds one text in others, in time linear in both (Knuth, Morris, Pratt: Fast Pattern Matching in Strings, 1977):
/// texts come from users, and none may make a search take the product of the two lengths.
class Finder
{
public:
    Finder(std::wstring_view wanted, bool ignoreCase) : wanted(wanted), comparison(ignoreCase)
    {
        if (wanted.size() > shortBorders.size()) {
            longBorders.resize(wanted.size());
            borders = longBorders.data();
        }
        borders[0] = 0;
        for (std::size_t i = 1; i < wanted.size(); ++i)
            borders[i] = static_cast<std::uint32_t>(Extend(i > 1 ? borders[i - 1] : 0, wanted[i]));
    }
    Finder(const Finder&) = delete;
    Finder& operator=(const Finder&) = delete;

    /// The first place at or after `start`, or npos.
    std::size_t Find(std::wstring_view text, std::size_t start)
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
    const std::wstring_view wanted; // not empty
    Comparison comparison;
    // Of each prefix: how long a proper prefix of it ends it. Ordinary texts to find take no allocation.
    std::array<std::uint32_t, 32> shortBorders;
    std::vector<std::uint32_t> longBorders;
    std::uint32_t* borders = shortBorders.data();

    /// How much of the wanted text stands before and with `ch`, when `matched` of it stood before.
    std::size_t Extend(std::size_t matched, wchar_t ch)
    {
        while (!comparison.AreSame(wanted[matched], ch)) {
            if (matched == 0)
                return 0;
            matched = borders[matched - 1];
        }
        return matched + 1;
    }
};

/// Matches the pieces that the stars of a pattern leave of it.
class PieceMatcher
{
public:
    explicit PieceMatcher(bool ignoreCase) : ignoreCase(ignoreCase), comparison(ignoreCase) {}

    bool IsMatch(std::wstring_view text, std::wstring_view piece)
    {
        const auto matches = [this](wchar_t wanted, wchar_t ch) {
            return comparison.AreSame(wanted, ch) || wanted == L'?';
        };
        return std::ranges::equal(piece, text, matches);
    }

    /// The first place, or npos.
    std::size_t Find(std::wstring_view text, std::wstring_view piece)
    {
        if (piece.find(L'?') == std::wstring_view::npos)
            return piece.empty() ? 0 : Finder(piece, ignoreCase).Find(text, 0);
        for (std::size_t at = 0; at + piece.size() <= text.size(); ++at) {
            if (IsMatch(text.substr(at, piece.size()), piece))
                return at;
        }
        return std::wstring_view::npos;
    }

private:
    const bool ignoreCase;
    Comparison comparison;
};
} // namespace

bool WString::Equals(std::wstring_view other, bool ignoreCase) const
{
    if (!ignoreCase)
        return View() == other;
    Comparison comparison(true);
    return std::ranges::equal(View(), other, [&](wchar_t l, wchar_t r) { return comparison.AreSame(l, r); });
}

bool WString::StartsWith(const WString& prefix, bool ignoreCase) const
{
    return length >= prefix.length && prefix.Equals(View().substr(0, prefix.length), ignoreCase);
}

bool WString::EndsWith(const WString& suffix, bool ignoreCase) const
{
    return length >= suffix.length && suffix.Equals(View().substr(length - suffix.length), ignoreCase);
}

int WString::IndexOf(const WString& find, int start) const
{
    constexpr int maxIndex = std::numeric_limits<int>::max();
    const std::size_t begin = start > 0 ? static_cast<std::size_t>(start) : 0;
    if (find.IsEmpty())
        return begin <= length && begin <= maxIndex ? static_cast<int>(begin) : -1;
    const std::size_t index = Finder(find.View(), false).Find(View(), begin);
    if (index == std::wstring_view::npos)
        return -1;
    return index < maxIndex ? static_cast<int>(index) : maxIndex;
}

void WString::Replace(const WString& find, const WString& with, bool ignoreCase)
{
    if (find.IsEmpty())
        return;
    Finder finder(find.View(), ignoreCase);
    WString result;
    std::size_t done = 0;
    for (std::size_t index; (index = finder.Find(View(), done)) != std::wstring_view::npos;) {
        result.Append(data + done, index - done);
        result += with;
        done = index + find.length;
    }
    result.Append(data + done, length - done);
    *this = std::move(result);
}

bool WString::IsWildcardMatch(const wchar_t* pattern, bool ignoreCase) const
{
    constexpr auto npos = std::wstring_view::npos;
    PieceMatcher matcher(ignoreCase);
    std::wstring_view text = View();
    std::wstring_view rest(pattern);
    const std::size_t first = rest.find(L'*');
    if (first == npos)
        return matcher.IsMatch(text, rest);
    if (!matcher.IsMatch(text.substr(0, first), rest.substr(0, first)))
        return false;
    text.remove_prefix(first);
    rest.remove_prefix(first + 1);
    // The earliest place of a piece leaves the most for the pieces behind it.
    for (std::size_t star; (star = rest.find(L'*')) != npos; rest.remove_prefix(star + 1)) {
        const std::size_t place = matcher.Find(text, rest.substr(0, star));
        if (place == npos)
            return false;
        text.remove_prefix(place + star);
    }
    return text.size() >= rest.size() && matcher.IsMatch(text.substr(text.size() - rest.size()), rest);
}
