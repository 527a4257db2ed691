#include "Text/ReferenceText.h"

#include "Text/CharacterCase.h"

#include <algorithm>

static std::wstring_view Trim(std::wstring_view text) noexcept
{
    const auto first = std::find_if_not(text.begin(), text.end(), IsWhiteSpace);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), IsWhiteSpace).base();
    return {first, last};
}

/// The kind that the character stands for, or 0. A letter differs from its capital in one bit; no other character has
/// one of these letters as its capital here.
static wchar_t GetKind(wchar_t ch) noexcept
{
    const auto kind = static_cast<wchar_t>(ch & ~L' ');
    return kind == L'S' || kind == L'C' || kind == L'U' || kind == L'E' ? kind : L'\0';
}

/// reference: "%" kind "{" name "}"
ReferenceText::Reference ReferenceText::Read(std::wstring_view text) noexcept
{
    constexpr std::size_t prefix = 2; // the "%" and the letter
    const wchar_t kind = text.size() < prefix ? L'\0' : GetKind(text[1]);
    if (!kind)
        return {.fault = Fault::Kind, .end = 1};
    Reference reference = ReadName(text.substr(prefix));
    reference.kind = kind;
    reference.end += prefix;
    return reference;
}

ReferenceText::Reference ReferenceText::ReadName(std::wstring_view text) noexcept
{
    if (!text.starts_with(L'{'))
        return {.fault = Fault::Opening, .end = 0};
    const std::size_t closing = text.find(L'}');
    const bool closed = closing != text.npos;
    return {.fault = closed ? Fault::None : Fault::Closing,
        .name = Trim(text.substr(1, closed ? closing - 1 : closing)),
        .end = closed ? closing + 1 : text.size()};
}

ReferenceText::Reference ReferenceText::Find(std::wstring_view text, std::wstring_view kinds) noexcept
{
    for (std::size_t start = text.find(L'%'); start != text.npos; start = text.find(L'%', start + 1)) {
        const wchar_t kind = start + 2 < text.size() && text[start + 2] == L'{' ? GetKind(text[start + 1]) : L'\0';
        if (!kind || kinds.find(kind) == kinds.npos)
            continue;
        Reference reference = Read(text.substr(start));
        reference.start = start;
        reference.end += start;
        return reference;
    }
    return {.fault = Fault::Kind, .start = text.size(), .end = text.size()};
}

/// name: "[" section "]" key | section blank key
ReferenceText::SettingName ReferenceText::ReadSettingName(std::wstring_view name) noexcept
{
    const bool bracketed = name.starts_with(L'[');
    const std::size_t end = bracketed ? name.find(L']') : name.find_first_of(L" \t");
    if (end == name.npos)
        return {.fault = bracketed ? Fault::SectionEnd : Fault::Section};
    return {.section = Trim(name.substr(bracketed, end - bracketed)), .key = Trim(name.substr(end + 1))};
}
