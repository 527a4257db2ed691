#include "CandidateList.h"

#include "Colours.h"
#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
using Candidate = Completion::Candidate;
using List = std::vector<Candidate>;

/// The short one of a candidate's names, for columns.
WString GetName(const Candidate& candidate)
{
    const WString text = candidate.text.Trim();
    return candidate.label.Length() < text.Length() ? candidate.label : text;
}

template <typename GetText>
std::size_t GetWidth(const List& candidates, const GetText& getText)
{
    std::size_t width = 0;
    for (const Candidate& candidate : candidates)
        width = std::max(width, CountCells(getText(candidate).View()));
    return width;
}

std::string Pad(const WString& text, std::size_t width)
{
    const std::size_t cells = CountCells(text.View());
    return text.ToUtf8() + std::string(width - std::min(width, cells), ' ');
}

std::string LayOutMeanings(const List& candidates, std::size_t columns, int descriptor)
{
    const auto getLabel = [](const Candidate& candidate) { return candidate.label; };
    const std::size_t width = std::min(GetWidth(candidates, getLabel), columns);
    std::string lines;
    for (const Candidate& candidate : candidates) {
        const WString label = ClipToCells(candidate.label.View(), columns);
        const std::size_t room = columns - std::min(columns, width + 2);
        const WString meaning = ClipToCells(candidate.meaning.View(), room);
        const bool hasMeaning = !meaning.IsEmpty();
        lines +=
            hasMeaning ? Pad(label, width) + "  " + Paint(meaning.ToUtf8(), Colour::Aside, descriptor) : label.ToUtf8();
        lines += '\n';
    }
    return lines;
}

std::string LayOutColumns(const List& candidates, std::size_t maxRows, std::size_t columns)
{
    const std::size_t width = std::min(GetWidth(candidates, GetName), columns);
    const std::size_t perRow = std::max<std::size_t>((columns + 2) / (width + 2), 1);
    const std::size_t rows = std::min((candidates.size() + perRow - 1) / perRow, maxRows);
    const std::size_t count = std::min(candidates.size(), rows * perRow);
    std::string lines;
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t index = row; index < count; index += rows) {
            const WString name = ClipToCells(GetName(candidates[index]).View(), width);
            lines += index + rows < count ? Pad(name, width + 2) : name.ToUtf8();
        }
        lines += '\n';
    }
    if (count < candidates.size())
        lines += "... and " + std::to_string(candidates.size() - count) + " more\n";
    return lines;
}
} // namespace

WString GetCommonBeginning(const std::vector<Completion::Candidate>& candidates)
{
    std::wstring_view common = candidates.front().text.View();
    for (const Candidate& candidate : candidates) {
        const std::wstring_view text = candidate.text.View();
        const auto isSame = [](wchar_t left, wchar_t right) { return ToLower(left) == ToLower(right); };
        const auto end = std::ranges::mismatch(common, text, isSame).in1;
        common = {common.begin(), end};
    }
    return WString(common);
}

std::string LayOut(const std::vector<Completion::Candidate>& candidates, const Window& window, int descriptor)
{
    constexpr std::size_t few = 20;
    const std::size_t maxRows = window.rows > 8 ? window.rows - 4 : 4; // the line and its list are seen together
    const std::size_t columns = window.columns > 1 ? window.columns - 1 : 1;
    const bool hasMeanings = std::ranges::any_of(candidates, [](const Candidate& candidate) {
        return !candidate.meaning.IsEmpty() || candidate.label.Length() > candidate.text.Length();
    });
    if (hasMeanings && candidates.size() <= std::min(few, maxRows))
        return LayOutMeanings(candidates, columns, descriptor);
    return LayOutColumns(candidates, maxRows, columns);
}
