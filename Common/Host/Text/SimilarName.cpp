#include "Text/SimilarName.h"

#include "Text/CharacterCase.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace {
constexpr unsigned int longestName = 100;

/// How many mistakes a name of so many letters may hold.
std::size_t GetLimit(std::size_t length)
{
    return std::min<std::size_t>((length + 2) / 4, 3);
}

/// Of few letters all but a few make another name: of up to three the first is to be right, of two none may be wrong or
/// too many. Two that have changed places are.
bool AreAlikeEnough(std::wstring_view typed, std::wstring_view name)
{
    constexpr std::size_t fewLetters = 3;
    if (typed.size() > fewLetters || typed.size() < 2 || name.size() < 2)
        return typed.size() > fewLetters;
    const auto isSame = [&](std::size_t l, std::size_t r) { return ToLower(typed[l]) == ToLower(name[r]); };
    const bool areSwapped = isSame(0, 1) && isSame(1, 0);
    return areSwapped || (isSame(0, 0) && (typed.size() == fewLetters || name.size() > typed.size()));
}

/// The mistakes that make one text of the other, a row of the table for each letter of the left one.
unsigned int CountMistakes(std::wstring_view left, std::wstring_view right)
{
    std::array<std::vector<unsigned int>, 3> rows;
    auto& [beforeLast, last, row] = rows;
    for (auto& cells : rows)
        cells.resize(right.size() + 1);
    for (unsigned int column = 0; column <= right.size(); ++column)
        row[column] = column;
    for (unsigned int line = 1; line <= left.size(); ++line) {
        std::swap(beforeLast, last);
        std::swap(last, row);
        row[0] = line;
        for (std::size_t column = 1; column <= right.size(); ++column) {
            const auto isSame = [&](std::size_t l, std::size_t r) { return ToLower(left[l]) == ToLower(right[r]); };
            row[column] = std::min(
                {last[column] + 1, row[column - 1] + 1, last[column - 1] + (isSame(line - 1, column - 1) ? 0 : 1)});
            if (line > 1 && column > 1 && isSame(line - 1, column - 2) && isSame(line - 2, column - 1))
                row[column] = std::min(row[column], beforeLast[column - 2] + 1);
        }
    }
    return row[right.size()];
}
} // namespace

void SimilarName::Offer(const WString& name)
{
    const bool areLong = typed.Length() > longestName || name.Length() > longestName;
    const std::size_t longer = std::max(typed.Length(), name.Length());
    const std::size_t limit = GetLimit(typed.Length());
    if (areLong || longer - std::min(typed.Length(), name.Length()) > limit ||
        !AreAlikeEnough(typed.View(), name.View()))
        return;
    const unsigned int mistakes = CountMistakes(typed.View(), name.View());
    const bool fitsBetter = name.Length() == typed.Length() && nearest.Length() != typed.Length();
    if (mistakes > limit || mistakes > distance || (mistakes == distance && !fitsBetter))
        return;
    distance = mistakes;
    nearest = name;
}

void SimilarName::Offer(const WStringArray& names)
{
    for (const WString& name : names)
        Offer(name);
}

WString DidYouMean(const WString& meant)
{
    return meant.IsEmpty() ? meant : L" (did you mean " + meant + L"?)";
}
