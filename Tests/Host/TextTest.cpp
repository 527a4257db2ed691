#include "Support/HostTexts.h"
#include "Text/CharacterCase.h"
#include "Text/SimilarName.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

static std::string Utf8(const WString& text)
{
    return text.ToUtf8();
}

TEST(WString, CopiesShareNothingAndAMovedTextIsEmptyAndUsable)
{
    for (const std::size_t length : {0u, 1u, 3u, 15u, 16u, 31u, 1000u}) {
        const WString original(length, L'x');
        WString copy(original);
        copy += L'y';
        WString assigned(40, L'z');
        assigned = original;
        assigned.Append(L"y");
        EXPECT_EQ(original, WString(length, L'x'));
        EXPECT_EQ(copy, original + L"y");
        EXPECT_EQ(assigned, original + L"y");

        WString moved(std::move(copy));
        EXPECT_TRUE(copy.IsEmpty()); // NOLINT: what is left is what is tested
        copy += L"again";            // NOLINT
        assigned = std::move(moved);
        EXPECT_STREQ(moved.ToCString(), L""); // NOLINT
        EXPECT_EQ(assigned, original + L"y");
        EXPECT_EQ(copy, L"again");
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
        text.Replace(text, text, true);
        EXPECT_EQ(text, original.Substring(3, 2));
    }
}

TEST(WString, CutsAndFindsWithinItsEnds)
{
    const WString text(L"abcabc");
    EXPECT_EQ(Join({text.Left(UINT_MAX), text.Right(UINT_MAX), text.Substring(4, INT_MAX), text.Substring(2, 3)}),
        "abcabc\nabcabc\nbc\ncab");
    EXPECT_EQ(text.Substring(6) + text.Substring(UINT_MAX, 1) + WString(L" \r\n\t").Trim(), L"");
    EXPECT_EQ(WString(L" \t\u2003a b\n ").Trim(), L"a b");
    const std::tuple<const wchar_t*, int, int> finds[] = {{L"bc", 0, 1}, {L"bc", 2, 4}, {L"bc", 5, -1}, {L"bc", -7, 1},
        {L"", 6, 6}, {L"", 7, -1}, {L"abc", INT_MAX, -1}, {L"abcabcd", 0, -1}};
    for (const auto& [find, start, index] : finds)
        EXPECT_EQ(text.IndexOf(find, start), index) << Utf8(find) << " from " << start;
    WString item(L"unchanged");
    EXPECT_FALSE(WString(L"A;B").TryGetListItem(item, UINT_MAX, L';'));
    EXPECT_EQ(item, L"unchanged");
    EXPECT_EQ(GetThrown([] { WString((1u << 24) + 1, L'x'); }), "0:1:12 The text is too long");
}

TEST(WString, ConvertsUtf8)
{
    const std::pair<const char*, const wchar_t*> rows[] = {
        {"a\xC3\xA5\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\u00E5\u20AC\U0001F600"},
        {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", L"\uFFFF\U0010FFFF"}, {"\xC0\xAF \xE0\x9F\xBF", L"\uFFFD \uFFFD"}, // overlong
        {"\xED\xA0\x80 \xF4\x90\x80\x80", L"\uFFFD \uFFFD"},           // a surrogate, beyond the last character
        {"\xE2\x82z\xFF\x80 \xE2\x82", L"\uFFFDz\uFFFD\uFFFD \uFFFD"}, // stray bytes, cut short
    };
    for (const auto& [bytes, expected] : rows) {
        const WString text = WString::FromUtf8(bytes);
        EXPECT_EQ(text, expected) << bytes;
        EXPECT_EQ(text.ToUtf8() == bytes, text.IndexOf(L"\uFFFD") == -1) << bytes;
    }
    const wchar_t impossible[] = {0xD800, static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), 0};
    EXPECT_EQ(WString(impossible).ToUtf8(), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(WString::FromUtf8(std::string_view("a\0b", 3)).Length(), 3u);
}

TEST(WString, IgnoresCaseBeyondAscii)
{
    EXPECT_EQ(WString(L"az\u00E5\u03C9\u0436\u00DF").ToUpperCase(), L"AZ\u00C5\u03A9\u0416\u00DF");
    EXPECT_EQ(WString(L"AZ[\u00C5\u03A9\u0416").ToLowerCase(), L"az[\u00E5\u03C9\u0436");
    EXPECT_TRUE(WString(L"\u00C5ngstr\u00F6m").Equals(L"\u00E5NGSTR\u00D6M", true));
    EXPECT_FALSE(WString(L"\u00C5").Equals(L"\u00E5", false) || WString(L"ab").Equals(L"abc", true));
    EXPECT_LT(CompareIgnoreCase(L"a_", L"Ab"), 0);
    EXPECT_GT(CompareIgnoreCase(L"abc", L"AB"), 0);
    WStringArray array{L"b", L"ab", L"B", L"a", L"_", L"\u00C5", L"A"};
    array.Sort();
    EXPECT_EQ(Join(array), "_\nA\na\nab\nB\nb\n\u00C5");
    WString text(L"\u00E5bab");
    text.Replace(L"\u00C5B", L"abb", true);
    text.Replace(L"AB", L"", true);
    EXPECT_EQ(text, L"b");
}

TEST(WString, MatchesWildcards)
{
    const WString piece(L"a piece that is longer than others a piece that is");
    const std::tuple<WString, WString, bool> rows[] = {{L"", L"", true}, {L"", L"**", true}, {L"", L"?", false},
        {L"a", L"", false}, {L"aB", L"Ab", true}, {L"ab", L"a?b", false}, {L"\u00C5b", L"\u00E5*b", true},
        {L"aba", L"ab*ba", false}, {L"abba", L"ab*ba", true}, {L"abcbc", L"a*b?", true}, {L"aabab", L"*aba*", true},
        {L"xaxbxxb", L"*x?xx*b", true}, {L"xaxbxxb", L"*x?x?x?x*", false}, {L"a*b?", L"A*?", true},
        {piece + L" longer", L"*" + piece.Right(40) + L"*R", true}, {piece, L"*" + piece + L"?*", false}};
    for (const auto& [text, pattern, matches] : rows)
        EXPECT_EQ(text.IsWildcardMatch(pattern.ToCString(), true), matches) << Utf8(text) << " " << Utf8(pattern);
    EXPECT_FALSE(WString(L"File.TXT").IsWildcardMatch(L"*.txt", false));
    // Neither many pieces nor a long one take the product of the lengths.
    WString stars;
    for (int i = 0; i < 200; ++i)
        stars += L"*a";
    const WString text(1'000'000, L'a');
    EXPECT_FALSE(text.IsWildcardMatch((stars + L"*b").ToCString(), true));
    EXPECT_FALSE(text.IsWildcardMatch((L"*" + text.Left(500'000) + L"b*").ToCString(), true));
    EXPECT_TRUE(text.IsWildcardMatch(stars.ToCString(), true));
}

TEST(WString, SplitsAtKeywords)
{
    // The result is null when the keyword is not found.
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L" a=1 THEN Set b ", L"a=1|Set b"},
        {L"a=1 then Set b then c", L"a=1|Set b then c"}, {L"(a)Then(b)", L"(a)|(b)"}, {L"THEN", L"|"},
        {L"athen b thenx a.then then_ 1then thEn c", L"athen b thenx a.then then_ 1then|c"},
        {L"\"x \\\" then y\" then z", L"\"x \\\" then y\"|z"}, {L"\"x\\\\\" then z", L"\"x\\\\\"|z"},
        {L"\"x then y", nullptr}, {L"\u00E5then THE", nullptr}, {L"", nullptr}};
    for (const auto& [text, result] : rows) {
        WString before(L"-");
        WString after(text);
        EXPECT_EQ(after.TrySplitAtKeyword(L"THEN", before, after), result != nullptr) << Utf8(text);
        EXPECT_EQ(before + L"|" + after, result ? WString(result) : WString(L"-|") + text);
    }
}

TEST(WString, SplitsIntoPieces)
{
    const std::tuple<const wchar_t*, const wchar_t*, const char*> rows[] = {{L"  ", L";", ""},
        {L" a ; b;;\t;c;", L";", "a\nb\nc"}, {L"a;b,c", L";,", "a\nb\nc"},
        {L"Echo \"a;b\";Echo c", L";", "Echo \"a;b\"\nEcho c"}, {L"\"\\\";\";b", L";", "\"\\\";\"\nb"},
        {L"a;\"b;c", L";", "a\n\"b;c"}, {L"a;b;c;d", L";", "0:0:9"}, {L" ; ;", L";", ""},
        {L"a;abcdefghijk", L";", "0:0:9"}, {L"abcdefghij", L";", "abcdefghij"}};
    for (const auto& [text, separators, expected] : rows) {
        WStringArray items;
        const std::string thrown = GetThrown([&, text = text, separators = separators] {
            WString(text).GetWStringArray(items, 1, 3, 9, 1, 10, separators);
        });
        EXPECT_EQ(thrown.empty() ? Join(items) : thrown, expected) << Utf8(text);
    }
    const WString lines(L"a\n\nbc\n");
    std::size_t position = 0;
    for (const wchar_t* piece : {L"a", L"bc", L"", L""})
        EXPECT_EQ(lines.StrTok(L"\n", position), piece);
    EXPECT_EQ(position, lines.Length());
}

TEST(ExitCode, HasATextForm)
{
    ExitCode code(7);
    EXPECT_TRUE(ExitCode::TryParse(L"65535:65534:4294967295", code));
    EXPECT_FALSE(ExitCode::TryParse(L" 1:0:1", code) || ExitCode::TryParse(L"1:0:1 ", code));
    EXPECT_EQ(code, ExitCode(65535, 65534, 4294967295u));
    EXPECT_EQ(code.ToString(), L"65535:65534:4294967295");
    const wchar_t* first = ExitCode(1).ToCString();
    for (unsigned int i = 2; i <= 8; ++i)
        EXPECT_EQ(WString(ExitCode(i).ToCString()), ExitCode(i).ToString());
    EXPECT_STREQ(first, L"0:0:1");
}

TEST(SimilarName, FindsWhatWasMeant)
{
    const struct
    {
        const wchar_t* typed;
        const wchar_t* meant; // empty where nothing is near enough
    } cases[] = {
        {L"Cacl", L"Calc"},
        {L"calx", L"Calc"},
        {L"Roud", L"Round"},
        {L"tarrget", L"target"},
        {L"FrontDoorOpn", L"FrontDoorOpen"},
        {L"FrontDorrOepn", L"FrontDoorOpen"},
        {L"St", L"Set"},
        {L"fi", L"If"},
        {L"S", L""},
        {L"Se", L"Set"},
        {L"Sx", L""},
        {L"Let", L""},
        {L"Sets", L"Set"},
        {L"i1", L""},
        {L"Nope", L""},
        {L"Ruond2", L"Round"},
        {L"kaka", L""},
        {L"Stauts", L"Status"},
        {L"", L""},
    };
    for (const auto& test : cases) {
        SimilarName similar(test.typed);
        for (const wchar_t* name :
            {L"Calc", L"Set", L"If", L"i", L"Round", L"Rows", L"target", L"Stats", L"Status", L"FrontDoorOpen"})
            similar.Offer(name);
        EXPECT_EQ(similar.Get(), test.meant) << Utf8(test.typed);
    }
}
