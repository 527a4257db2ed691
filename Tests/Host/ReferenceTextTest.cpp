#include "Text/ReferenceText.h"
#include "Text/WString.h"

#include <gtest/gtest.h>

using ReferenceText::Fault;
using ReferenceText::Reference;

static const char* Name(Fault fault)
{
    static const char* const names[] = {"none", "kind", "opening", "closing", "section end", "section"};
    return names[static_cast<int>(fault)];
}

/// "S 'name' 0-8", for a fault with what is wrong, and "unfinished" when more text might mend it.
static std::string Describe(const Reference& read, std::wstring_view text)
{
    std::string result = read.kind ? std::string(1, static_cast<char>(read.kind)) : "-";
    result += " '" + WString(read.name).ToUtf8() + "' " + std::to_string(read.start) + "-" + std::to_string(read.end);
    if (read.fault != Fault::None)
        result += std::string(" ") + Name(read.fault) + (read.end == text.size() ? " unfinished" : "");
    return result;
}

TEST(ReferenceText, IsReadOrSaysWhatIsWrongWhere)
{
    const std::pair<const wchar_t*, const char*> rows[] = {{L"%S{ a b\t}x", "S 'a b' 0-9"}, {L"%c{}", "C '' 0-4"},
        {L"%e{a}}", "E 'a' 0-5"}, {L"%U{%S{x}}", "U '%S{x' 0-8"}, {L"%", "- '' 0-1 kind unfinished"},
        {L"%X{a}", "- '' 0-1 kind"}, {L"%\u017F{a}", "- '' 0-1 kind"}, {L"%S", "S '' 0-2 opening unfinished"},
        {L"%S {a}", "S '' 0-2 opening"}, {L"%C{", "C '' 0-3 closing unfinished"},
        {L"%s{ Tem", "S 'Tem' 0-7 closing unfinished"}};
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(Describe(ReferenceText::Read(text), text), expected) << WString(text).ToUtf8();
    EXPECT_EQ(Describe(ReferenceText::ReadName(L"{a}b"), L"{a}b"), "- 'a' 0-3");
}

TEST(ReferenceText, IsFoundAmongOtherPercentSigns)
{
    const std::tuple<const wchar_t*, const wchar_t*, const char*> rows[] = {
        {L"100% %d %%Q{ %s{a}", L"SCUE", "S 'a' 13-18"}, {L"%C{%S{x}}", L"S", "S 'x' 3-8"},
        {L"%C{%S{x}}", L"SCUE", "C '%S{x' 0-8"}, {L"a %U{b", L"SCUE", "U 'b' 2-6 closing unfinished"},
        {L"a %S{b", L"C", "- '' 6-6 kind unfinished"}, {L"50%S", L"S", "- '' 4-4 kind unfinished"}};
    for (const auto& [text, kinds, expected] : rows)
        EXPECT_EQ(Describe(ReferenceText::Find(text, kinds), text), expected) << WString(text).ToUtf8();
}

TEST(ReferenceText, TellsTheSectionFromTheKey)
{
    const std::pair<const wchar_t*, const char*> rows[] = {{L"[ S T ] K ", "none S T|K"}, {L"S\t K x", "none S|K x"},
        {L"[]", "none |"}, {L"[a]b]c", "none a|b]c"}, {L"[S K", "section end |"}, {L"SK", "section |"},
        {L"", "section |"}};
    for (const auto& [text, expected] : rows) {
        const auto [fault, section, key] = ReferenceText::ReadSettingName(text);
        EXPECT_EQ(Name(fault) + (" " + WString(section).ToUtf8()) + "|" + WString(key).ToUtf8(), expected);
    }
}
