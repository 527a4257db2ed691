#include "Text/CharacterCase.h"
#include "Text/HostError.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <tuple>
#include <utility>

static std::string Utf8(const WString& text)
{
    return text.ToUtf8();
}

static std::string Joined(const WStringArray& items)
{
    WString result;
    for (const WString& item : items)
        result += item + L"|";
    return Utf8(result);
}

TEST(WString, CopiesShareNothing)
{
    for (const std::size_t length : {0u, 1u, 15u, 16u, 31u, 1000u}) {
        const WString original(length, L'x');
        WString copy(original);
        copy += L'y';
        WString assigned(40, L'z');
        assigned = original;
        assigned.Append(L"w");
        EXPECT_EQ(original, WString(length, L'x'));
        EXPECT_EQ(copy, WString(length, L'x') + L"y");
        EXPECT_EQ(assigned, WString(length, L'x') + L"w");
    }
}

TEST(WString, MovingLeavesAnEmptyUsableText)
{
    for (const std::size_t length : {3u, 15u, 16u, 1000u}) {
        const WString expected(length, L'x');
        WString source(expected);
        WString moved(std::move(source));
        EXPECT_EQ(moved, expected);
        EXPECT_TRUE(source.IsEmpty()); // NOLINT: what is left is what is tested
        source += L"again";            // NOLINT
        WString target(50, L'z');
        target = std::move(moved);
        EXPECT_EQ(target, expected);
        EXPECT_STREQ(moved.ToCString(), L""); // NOLINT
        EXPECT_EQ(source, L"again");
    }
}

TEST(WString, TakesPartsOfItself)
{
    for (const std::size_t length : {5u, 15u, 300u}) {
        WString text;
        while (text.Length() < length)
            text += static_cast<wchar_t>(L'a' + text.Length() % 26);
        const WString original(text);
        for (int i = 0; i < 4; ++i)
            text += text;
        EXPECT_EQ(text.Length(), length * 16);
        EXPECT_EQ(text.Right(static_cast<unsigned>(length)), original);
        text = text.ToCString() + 2;
        EXPECT_TRUE(text.StartsWith(original.Substring(2), false));
        text.Assign(text.ToCString() + 1, 2);
        EXPECT_EQ(text, original.Substring(3, 2));
    }
}

TEST(WString, CutsAndTrims)
{
    const WString text(L"abcdef");
    EXPECT_EQ(text.Left(2), L"ab");
    EXPECT_EQ(text.Left(UINT_MAX), text);
    EXPECT_EQ(text.Right(2), L"ef");
    EXPECT_EQ(text.Right(UINT_MAX), text);
    EXPECT_EQ(text.Substring(2), L"cdef");
    EXPECT_EQ(text.Substring(2, 3), L"cde");
    EXPECT_EQ(text.Substring(4, INT_MAX), L"ef");
    EXPECT_EQ(text.Substring(6), L"");
    EXPECT_EQ(text.Substring(UINT_MAX, 1), L"");
    EXPECT_EQ(WString(L" \t\u2003a b\n ").Trim(), L"a b");
    EXPECT_EQ(WString(L" \r\n\t").Trim(), L"");

    WString list;
    for (const wchar_t* item : {L"", L"a", L"b"})
        list.AppendWithSeparator(item, L", ");
    EXPECT_EQ(list, L"a, b");
}

TEST(WString, ConvertsUtf8)
{
    const std::pair<const char*, const wchar_t*> rows[] = {
        {"a\xC3\xA5\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\u00E5\u20AC\U0001F600"},
        {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", L"\uFFFF\U0010FFFF"}, {"\xC0\xAF", L"\uFFFD"}, // overlong
        {"\xE0\x9F\xBF", L"\uFFFD"},                                                    // overlong
        {"\xED\xA0\x80", L"\uFFFD"},                                                    // a surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD"},                                                // beyond the last character
        {"\xE2\x82", L"\uFFFD"},                                                        // cut short
        {"\xE2\x82z\xFF\x80", L"\uFFFDz\uFFFD\uFFFD"},                                  // stray bytes
    };
    for (const auto& [bytes, expected] : rows) {
        const WString text = WString::FromUtf8(bytes);
        EXPECT_EQ(text, expected) << bytes;
        if (text.IndexOf(L"\uFFFD") == -1) {
            EXPECT_EQ(text.ToUtf8(), bytes);
        }
    }
    const wchar_t impossible[] = {0xD800, static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), 0};
    EXPECT_EQ(WString(impossible).ToUtf8(), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(WString::FromUtf8(std::string_view("a\0b", 3)).Length(), 3u);
}

TEST(WString, IgnoresCaseBeyondAscii)
{
    EXPECT_EQ(WString(L"az\u00E5\u03C9\u0436\u00DF").ToUpperCase(), L"AZ\u00C5\u03A9\u0416\u00DF");
    EXPECT_EQ(WString(L"AZ[\u00C5\u03A9\u0416").ToLowerCase(), L"az[\u00E5\u03C9\u0436");
    EXPECT_TRUE(WString(L"\u00C5ngstr\u00F6m").Equals(L"\u00E5NGSTR\u00D6M", true));
    EXPECT_FALSE(WString(L"\u00C5ngstr\u00F6m").Equals(L"\u00E5NGSTR\u00D6M", false));
    EXPECT_FALSE(WString(L"ab").Equals(L"abc", true));
    EXPECT_TRUE(WString(L"Abc").StartsWith(L"aB", true) && WString(L"Abc").EndsWith(L"BC", true));
    EXPECT_FALSE(WString(L"Abc").StartsWith(L"aB", false) || WString(L"Abc").EndsWith(L"BC", false));
    EXPECT_FALSE(WString(L"bc").StartsWith(L"bcd", true) || WString(L"bc").EndsWith(L"abc", true));
    EXPECT_LT(CompareIgnoreCase(L"a_", L"Ab"), 0);
    EXPECT_GT(CompareIgnoreCase(L"abc", L"AB"), 0);
    EXPECT_EQ(CompareIgnoreCase(L"\u00E5", L"\u00C5"), 0);

    WStringArray array{L"b", L"ab", L"B", L"a", L"_", L"\u00C5", L"A"};
    array.Sort();
    EXPECT_EQ(Joined(array), "_|A|a|ab|B|b|\xC3\x85|");
}

TEST(WString, FindsText)
{
    const WString text(L"abcabc");
    const std::tuple<const wchar_t*, int, int> rows[] = {{L"bc", 0, 1}, {L"bc", 2, 4}, {L"bc", 5, -1}, {L"bc", -7, 1},
        {L"x", 0, -1}, {L"", 0, 0}, {L"", 6, 6}, {L"", 7, -1}, {L"abc", INT_MAX, -1}, {L"abcabcd", 0, -1}};
    for (const auto& [find, start, index] : rows)
        EXPECT_EQ(text.IndexOf(find, start), index) << Utf8(find) << " from " << start;
}

TEST(WString, ReplacesEveryOccurrence)
{
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*, bool, const wchar_t*> rows[] = {
        {L"Text teXT", L"xt", L"llus", true, L"Tellus tellus"},
        {L"Text teXT", L"xt", L"llus", false, L"Tellus teXT"},
        {L"aaaaa", L"aa", L"a", false, L"aaa"},
        {L"abab", L"AB", L"", true, L""},
        {L"\u00E5x", L"\u00C5", L"A", true, L"Ax"},
        {L"abc", L"", L"z", true, L"abc"},
        {L"abc", L"abcd", L"z", true, L"abc"},
        {L"a.b", L".", L"..", false, L"a..b"},
    };
    for (const auto& [original, find, with, ignoreCase, result] : rows) {
        WString text(original);
        text.Replace(find, with, ignoreCase);
        EXPECT_EQ(text, result) << Utf8(original) << ", " << Utf8(find);
    }
    WString itself(L"ab");
    itself.Replace(itself, itself, true);
    EXPECT_EQ(itself, L"ab");
}

TEST(WString, MatchesWildcards)
{
    const std::tuple<const wchar_t*, const wchar_t*, bool> rows[] = {{L"File.TXT", L"*.txt", true},
        {L"File.TXT", L"*.t?t", true}, {L"", L"", true}, {L"", L"*", true}, {L"", L"?", false}, {L"a", L"", false},
        {L"abc", L"abc*", true}, {L"abc", L"***abc", true}, {L"abc", L"a*d", false}, {L"abcbcd", L"a*bcd", true},
        {L"abcbcd", L"a*b*d", true}, {L"abc", L"a?", false}, {L"abc", L"a??", true}, {L"abc", L"ab", false},
        {L"mississippi", L"m*iss*ip*", true}, {L"mississippi", L"m*iss*ipx*", false},
        {L"1043:505:133", L"1043:*:133", true}, {L"\u00C5", L"\u00E5", true}, {L"a*b", L"a**b", true}};
    for (const auto& [text, pattern, matches] : rows)
        EXPECT_EQ(WString(text).IsWildcardMatch(pattern, true), matches) << Utf8(text) << ", " << Utf8(pattern);
    EXPECT_FALSE(WString(L"File.TXT").IsWildcardMatch(L"*.txt", false));

    WString stars;
    for (int i = 0; i < 200; ++i)
        stars += L"*a";
    EXPECT_FALSE(WString(100'000, L'a').IsWildcardMatch((stars + L"*b").ToCString(), true));
    EXPECT_TRUE(WString(100'000, L'a').IsWildcardMatch(stars.ToCString(), true));
}

TEST(WString, FindsListItems)
{
    // The item is null when there is none.
    const std::tuple<const wchar_t*, unsigned int, wchar_t, const wchar_t*> rows[] = {{L"A,B,c", 0, L',', L"A"},
        {L"A,B,c", 2, L',', L"c"}, {L"A,B,c", 3, L',', nullptr}, {L"", 0, L',', L""}, {L"", 1, L',', nullptr},
        {L" A ,,", 0, L',', L" A "}, {L" A ,,", 2, L',', L""}, {L"A;B", UINT_MAX, L';', nullptr},
        {L"A,B;C", 0, L';', L"A,B"}};
    for (const auto& [list, index, separator, expected] : rows) {
        WString item(L"unchanged");
        EXPECT_EQ(WString(list).TryGetListItem(item, index, separator), expected != nullptr);
        EXPECT_EQ(item, expected ? expected : L"unchanged") << Utf8(list) << ", " << index;
    }
}

TEST(WString, SplitsAtKeywords)
{
    // The result is null when the keyword is not found.
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L" a=1 THEN Set b ", L"a=1|Set b"},
        {L"a=1 then Set b then c", L"a=1|Set b then c"},
        {L"(a)Then(b)", L"(a)|(b)"},
        {L"THEN", L"|"},
        {L"athen b thenx a.then then_ 1then thEn c", L"athen b thenx a.then then_ 1then|c"},
        {L"\"x then y\" then z", L"\"x then y\"|z"},
        {L"\"x \\\" then y\" then z", L"\"x \\\" then y\"|z"},
        {L"\"x\\\\\" then z", L"\"x\\\\\"|z"},
        {L"\"x then y", nullptr},
        {L"\u00E5then THE", nullptr},
        {L"", nullptr},
    };
    for (const auto& [text, result] : rows) {
        WString before(L"-");
        WString after(text);
        EXPECT_EQ(after.TrySplitAtKeyword(L"THEN", before, after), result != nullptr) << Utf8(text);
        EXPECT_EQ(before + L"|" + after, result ? WString(result) : WString(L"-|") + text);
    }
}

TEST(WString, SplitsIntoPieces)
{
    const std::tuple<const wchar_t*, const wchar_t*, const char*> rows[] = {
        {L"", L";", ""},
        {L"  ", L";", ""},
        {L" a ; b;;\t;c;", L";", "a|b|c|"},
        {L"a;b,c", L";,", "a|b|c|"},
        {L"Echo \"a;b\";Echo c", L";", "Echo \"a;b\"|Echo c|"},
        {L"\"\\\";\";b", L";", "\"\\\";\"|b|"},
        {L"a;\"b;c", L";", "a|\"b;c|"},
        {L"a;b;c;d", L";", "error 0:0:9"},
        {L";", L";", "error 0:0:9"},
        {L"a;abcdefghijk", L";", "error 0:0:9"},
        {L"abcdefghij", L";", "abcdefghij|"},
    };
    for (const auto& [text, separators, expected] : rows) {
        WStringArray items{L"old"};
        std::string result;
        try {
            WString(text).GetWStringArray(items, 1, 3, 9, 1, 10, separators);
            result = Joined(items);
        } catch (const ExitCode& code) {
            result = "error " + Utf8(code.ToString());
        }
        EXPECT_EQ(result, expected) << Utf8(text);
    }
    const WString tooFew(L"a");
    WStringArray items;
    EXPECT_THROW(tooFew.GetWStringArray(items, 2, 3, 9, 1, 8, L";"), ExitCode);
    EXPECT_THROW(tooFew.GetWStringArray(items, 1, 3, 9, 2, 8, L";"), ExitCode);
}

TEST(WString, YieldsPieceAfterPiece)
{
    const WString text(L"a\n\nbc\n");
    std::size_t position = 0;
    for (const wchar_t* piece : {L"a", L"", L"bc", L"", L""})
        EXPECT_EQ(text.StrTok(L"\n", position), piece);
    EXPECT_EQ(position, text.Length());
}

TEST(ExitCode, HasATextForm)
{
    EXPECT_EQ(ExitCode(1043, 505, 133).ToString(), L"1043:505:133");
    EXPECT_EQ(ExitCode(65535, 65535, 4294967295u).ToString(), L"65535:65535:4294967295");
    EXPECT_EQ(ExitCode(8).ToString(), L"0:0:8");
    EXPECT_FALSE(ExitCode(7, 505, 0).IsError());

    ExitCode code(7);
    EXPECT_TRUE(ExitCode::TryParse(L"65535:65535:4294967295", code));
    EXPECT_EQ(code, ExitCode(65535, 65535, 4294967295u));
    for (const wchar_t* text : {L"", L"1", L"1:2", L"1:2:3:4", L":2:3", L"1::3", L"1:2:", L"65536:0:1", L"0:65536:1",
             L"0:0:4294967296", L"-1:0:1", L"+1:0:1", L" 1:0:1", L"1:0:1 ", L"1:0:0x1", L"99999999999999999999:0:1"}) {
        EXPECT_FALSE(ExitCode::TryParse(text, code)) << Utf8(text);
        EXPECT_EQ(code, ExitCode(65535, 65535, 4294967295u));
    }

    const wchar_t* first = ExitCode(1).ToCString();
    for (unsigned int i = 2; i <= 8; ++i)
        EXPECT_EQ(WString(ExitCode(i).ToCString()), ExitCode(i).ToString());
    EXPECT_STREQ(first, L"0:0:1");
}

TEST(HostError, HasAMessageOfItsOwn)
{
    std::set<std::wstring> messages;
    for (const unsigned int number : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 22u}) {
        const std::wstring message = GetHostMessage(ExitCode(7, ExitCode::hostModule, number));
        EXPECT_FALSE(message.empty()) << number;
        EXPECT_TRUE(messages.insert(message).second) << number;
    }
    EXPECT_STREQ(GetHostMessage(ExitCode(0, 505, 1)), L"");
    EXPECT_STREQ(GetHostMessage(ExitCode(0, ExitCode::hostModule, 23)), L"");

    const HostException error(HostError::FileError, L"a%s%n: gone");
    EXPECT_EQ(static_cast<const ExitCode&>(error), ExitCode(0, 1, 10));
    EXPECT_EQ(error.GetMessage(), L"File error: a%s%n: gone");
    EXPECT_EQ(HostException(HostError::Aborted).GetMessage(), L"Aborted");
}
