#pragma once

#include <initializer_list>
#include <random>
#include <string>

/// Makes expressions, most of which can be read, of the variables a, b, e, t, x and y and of names that are none. The
/// same for the same seed.
class RandomExpression
{
public:
    explicit RandomExpression(unsigned int seed) : engine(seed) {}

    std::string Make() { return MakeTerms(static_cast<int>(Below(4))); }

    /// A value for a variable; null for none.
    const wchar_t* PickValue()
    {
        return Pick<const wchar_t*>(
            {nullptr, nullptr, L"5", L"0", L"-1.5", L"true", L"false", L"abc", L"hello", L"", L"1e308"});
    }

private:
    std::mt19937 engine; // the distributions of the standard library differ, so it is used as it is

    unsigned int Below(unsigned int limit) { return static_cast<unsigned int>(engine()) % limit; }

    template <typename T>
    T Pick(std::initializer_list<T> choices)
    {
        return choices.begin()[Below(static_cast<unsigned int>(choices.size()))];
    }

    std::string MakeLeaf()
    {
        return Pick({"0", "1", "2.5", "1e300", "0x1F", "2e", ".", "\"abc\"", "\"xyz\"", "\"12\"", "\"\"", "\"A,B\"",
            "true", "FALSE", "PI", "RND", "a", "b", "e", "t", "x", "y", "kaka", "%S{No}", "%U{No}", "%E{x}",
            "%C{[No]No}", "%C{No}", "%X{No}", "%S{"});
    }

    std::string MakeCall(int depth)
    {
        std::string call =
            Pick({"IF", "IsErr", "isna", "InitIfNa", "Defined", "Not", "abs", "sqrt", "Max", "Len", "Mid", "Left",
                "IndexOf", "ListItem", "StrReplace", "Round", "Val", "Mod", "GetEnv", "GetStatus", "Rand", "Foo"});
        call += '(';
        for (unsigned int given = 0, count = 1 + Below(3); given < count; ++given)
            call += (given == 0 ? "" : ",") + MakeTerms(depth - 1);
        return call + (Below(60) == 0 ? "" : ")");
    }

    std::string MakeOperand(int depth)
    {
        const unsigned int kind = Below(10);
        if (depth <= 0 || kind < 6)
            return MakeLeaf();
        return kind < 9 ? MakeCall(depth) : "(" + MakeTerms(depth - 1) + ")";
    }

    std::string MakeTerms(int depth)
    {
        std::string terms = MakeOperand(depth);
        for (unsigned int more = Below(3); more > 0; --more) {
            terms += Below(60) == 0
                ? Pick({"and", "- -", "", ","})
                : Pick({"+", "-", "*", "/", "^", "&", "=", "<>", "<", ">", "<=", ">=", " and ", " or ", " xor "});
            terms += (Below(12) == 0 ? "-" : "") + MakeOperand(depth);
        }
        return terms;
    }
};
