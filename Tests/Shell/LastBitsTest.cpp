// The same digits on every processor: the values of 25,000 expressions that hang on single bits, drawn alike
// everywhere, against checksums of what a desk has printed. Where one differs, LAST_BITS=<folder> leaves the
// expressions and the values of each group in that folder, there and on a desk, for diff.

#include "Shell/Labsh.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <random>

namespace {
/// The parts of a list in braces are made from left to right; operands of + in whatever order the compiler likes.
std::string Join(std::initializer_list<std::string> parts)
{
    std::string text;
    for (const std::string& part : parts)
        text += part;
    return text;
}

class Draw
{
public:
    unsigned int Below(unsigned int limit)
    {
        return static_cast<unsigned int>(engine() % limit); // the distributions of the standard library differ
    }
    int Between(int least, int greatest)
    {
        return least + static_cast<int>(Below(static_cast<unsigned int>(greatest - least + 1)));
    }
    std::string Whole(int least, int greatest) { return std::to_string(Between(least, greatest)); }
    std::string Pick(std::initializer_list<const char*> choices)
    {
        return choices.begin()[Below(static_cast<unsigned int>(choices.size()))];
    }

    /// So many digits, of which the last is often a 5, and one of these exponents.
    std::string Number(int digits, int leastExponent, int greatestExponent)
    {
        std::string number = Whole(1, 9) + ".";
        for (int i = 2; i < digits; ++i)
            number += Whole(0, 9);
        return Join({number, Below(2) == 0 ? "5" : Whole(0, 9), "e", Whole(leastExponent, greatestExponent)});
    }
    std::string Number(int leastExponent, int greatestExponent)
    {
        return Number(Between(2, 17), leastExponent, greatestExponent);
    }

private:
    std::mt19937_64 engine;
};

/// What is left of a value without its first 15 digits.
std::string LastBitsOf(const std::string& value)
{
    return value + "-CStr(" + value + ")";
}

std::string MakeFunction(Draw& draw)
{
    static constexpr struct
    {
        const char* name;
        bool takesNegatives;
        int leastExponent;
        int greatestExponent;
    } functions_lc[] = {{"exp", true, -8, 2}, {"ln", false, -300, 300}, {"log", false, -300, 300}, {"sin", true, -8, 8},
        {"cos", true, -8, 8}, {"tan", true, -8, 8}, {"asin", true, -8, -1}, {"acos", true, -8, -1},
        {"atan", true, -8, 8}, {"sinh", true, -8, 2}, {"cosh", true, -8, 2}, {"tanh", true, -8, 0},
        {"abs", true, -300, 300}, {"int", true, 0, 14}, {"floor", true, 0, 14}, {"ceil", true, 0, 14}};
    const auto& [name, takesNegatives, least, greatest] = functions_lc[draw.Below(std::size(functions_lc))];
    return Join({name, takesNegatives ? draw.Pick({"(", "(-"}) : "(", draw.Number(least, greatest), ")"});
}

std::string MakePower(Draw& draw)
{
    const std::string base = draw.Number(-3, 3);
    switch (draw.Below(3)) {
    case 0: return Join({base, draw.Pick({"^", "^-"}), draw.Number(-3, 1)});
    case 1: return Join({"(-", base, ")^", draw.Whole(-40, 40)});
    default: return Join({base, "^0.5^", draw.Number(2, 0, 0)});
    }
}

std::string MakeSum(Draw& draw)
{
    std::string value = "0";
    for (int terms = draw.Between(1, 3); terms > 0; --terms)
        value += Join({draw.Pick({"+", "-"}), draw.Number(-4, 4), draw.Pick({"*", "/"}), draw.Number(-4, 4)});
    return LastBitsOf(draw.Below(2) == 0 ? "(" + value + ")" : "sqrt(abs(" + value + "))");
}

std::string MakeStatistic(Draw& draw)
{
    std::string value = draw.Pick({"Sum(", "Avg(", "Med(", "StDev(", "Slope(", "Intercept("});
    const int exponent = draw.Between(-3, 3);
    for (int pairs = draw.Between(2, 5); pairs > 0; --pairs)
        value += Join({draw.Number(9, exponent, exponent), ",", draw.Number(9, 0, 0), pairs == 1 ? ")" : ","});
    return LastBitsOf(value);
}

std::string MakeFormat(Draw& draw)
{
    std::string value = Join({draw.Pick({"", "-"}), draw.Number(-20, 20), draw.Pick({"", "/3", "/8", "*0.1"})});
    switch (draw.Below(4)) {
    case 0: return Join({draw.Pick({"Ftoa(", "Fcvt("}), value, ",", draw.Whole(2, 15), ")"});
    case 1: return Join({"FmtEng(", value, ",", draw.Whole(2, 15), draw.Pick({",true)", ",false)"})});
    case 2: return Join({"Round(", draw.Pick({"", "-"}), draw.Number(6, -4, 6), ",", draw.Whole(0, 6), ")"});
    default: return value;
    }
}

std::string MakeLimit(Draw& draw)
{
    const auto limit = [&draw] {
        return Join({draw.Pick({"", "-"}),
            draw.Pick({"2147483647", "2147483648", "4294967295", "4294967296", "9007199254740992", "1e15", "1e22",
                "1.7976931348623157e308", "2.2250738585072014e-308", "4.9406564584124654e-324", "2.22e-13", "16010101",
                "99991231", "657434", "2958465", "109205", "0.1"})});
    };
    const std::string value = Join({limit(), draw.Pick({"", "+1", "-1", "+0.5", "*2", "/2", "*0.9999999999999999"})});
    switch (draw.Below(3)) {
    case 0:
        return Join({draw.Pick({"ToHex(", "int(", "DaysToDate(", "DateToDays(", "Bool(", "Val(", "exp(", "sqrt(",
                         "sign(", "tanh(", "floor(", "IsErr("}),
            value, ")"});
    case 1:
        return Join({draw.Pick({"Mod(", "Round(", "Max(", "Min("}), value,
            draw.Pick({",7)", ",15)", ",0)", ",-3)", ",4294967296)"})});
    default: return Join({value, draw.Pick({"+", "-", "*", "/", "^", "<", "="}), limit()});
    }
}

/// FNV-1a.
std::uint64_t GetChecksum(const std::string& text)
{
    std::uint64_t sum = 0xcbf29ce484222325U;
    for (const char ch : text)
        sum = (sum ^ static_cast<unsigned char>(ch)) * 0x100000001b3U;
    return sum;
}

struct Group
{
    const char* name;
    std::string (*make)(Draw& draw);
    int count;
    std::uint64_t checksum;
};

void PrintTo(const Group& group, std::ostream* out)
{
    *out << group.name;
}
} // namespace

class LastBitsTest : public testing::TestWithParam<Group>
{};

TEST_P(LastBitsTest, AreThoseOfADesk)
{
    const Group& group = GetParam();
    Draw draw;
    std::string script;
    for (int i = 0; i < group.count; ++i)
        script += "Calc -- " + group.make(draw) + "\n";
    Labsh labsh({"-k"}, script);
    labsh.Wait();
    const std::string values = labsh.GetOutput();
    EXPECT_EQ(GetChecksum(values), group.checksum);
    if (const char* const folder = std::getenv("LAST_BITS")) {
        const std::string file = std::string(folder) + "/" + group.name;
        std::ofstream(file + ".expressions") << script;
        std::ofstream(file + ".values") << values;
    }
}

INSTANTIATE_TEST_SUITE_P(Groups, LastBitsTest,
    testing::Values(Group{"Functions", MakeFunction, 8000, 0xc4a3852aedae4b23U},
        Group{"Powers", MakePower, 4000, 0x8bfded118f6cfa01U}, Group{"Sums", MakeSum, 5000, 0xca9a433e1392b9d6U},
        Group{"Statistics", MakeStatistic, 2000, 0x836e335656b09646U},
        Group{"Formats", MakeFormat, 4000, 0x007f84b49edcc8f0U}, Group{"Limits", MakeLimit, 2000, 0x9674c8ad92dfb7f3U}),
    [](const testing::TestParamInfo<Group>& group) { return std::string(group.param.name); });
