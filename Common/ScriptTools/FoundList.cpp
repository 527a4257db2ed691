#include "FoundList.h"

#include "ExpressionFindings.h"
#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
/// The end of a text, whose opening quote is at `start`.
std::size_t FindTextEnd(std::wstring_view expression, std::size_t start)
{
    std::size_t at = start + 1;
    while (at < expression.size() && expression[at] != L'"')
        at += expression[at] == L'\\' ? 2u : 1u;
    return at + 1;
}
} // namespace

std::size_t FindItemEnd(std::wstring_view expression, std::size_t start)
{
    if (start >= expression.size())
        return expression.size();
    std::size_t end = start;
    if (expression[start] == L'"')
        end = FindTextEnd(expression, start);
    else if (expression[start] == L'%')
        end = std::min(expression.find(L'}', start), expression.size()) + 1;
    else
        end = static_cast<std::size_t>(std::ranges::find_if_not(expression.substr(start), [](wchar_t ch) {
            return IsNameCharacter(ch);
        }) - expression.begin());
    return std::min(std::max(end, start + 1), expression.size());
}

std::size_t FoundList::Warn(const wchar_t* code, int position, const WString& message, const WString& suggestion)
{
    const std::size_t start = static_cast<std::size_t>(std::max(position, 1)) - 1;
    out.push_back({false, code, start, std::max(start, FindItemEnd(expression, start)), message, suggestion});
    return out.size() - 1;
}

void FoundList::WarnOfAll(const wchar_t* code, const WString& message)
{
    out.push_back({false, code, 0, expression.size(), message});
}

void FoundList::Fail(bool isSure, const wchar_t* code, int position, const WString& message)
{
    const std::size_t start = static_cast<std::size_t>(std::max(position, 1)) - 1;
    out.push_back({isSure, code, start, std::max(start, std::min(start + 1, expression.size())), message});
}

bool FoundList::Is(std::size_t index, std::wstring_view code) const
{
    return out[index].code && out[index].code == code;
}

void FoundList::DropTested(std::size_t begin)
{
    for (; begin < out.size(); ++begin)
        if (!Is(begin, Findings::UnknownFunction) && !Is(begin, Findings::WrongCount) &&
            !Is(begin, Findings::BadReference))
            out[begin].code = nullptr;
}

void FoundList::Finish()
{
    const auto mine = out.begin() + static_cast<std::ptrdiff_t>(first);
    out.erase(
        std::remove_if(mine, out.end(), [](const ExpressionFinding& finding) { return !finding.code; }), out.end());
    std::stable_sort(out.begin() + static_cast<std::ptrdiff_t>(first), out.end(),
        [](const ExpressionFinding& left, const ExpressionFinding& right) { return left.start < right.start; });
}
