#include "Variation.h"

#include <algorithm>
#include <cctype>
#include <random>
#include <string_view>
#include <unordered_set>

namespace {
constexpr std::size_t variantCount_lc = 1000;
constexpr unsigned variablesPerLetter_lc = 250;

using Random = std::mt19937;

bool IsDigit(char character)
{
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

bool IsLetter(char character)
{
    return std::isalpha(static_cast<unsigned char>(character)) != 0;
}

/// The digits or the letters at the start, else one character.
std::string GetRun(std::string_view text)
{
    const auto* end = std::find_if_not(text.begin(), text.end(), IsDigit(text[0]) ? IsDigit : IsLetter);
    return {text.begin(), std::max(end, text.begin() + 1)};
}

/// Exponents stay as they are, so that a power remains finite.
bool EndsBeforeExponent(const std::string& text)
{
    constexpr const char* marks[] = {"^", "**", "e", "e-"};
    return std::any_of(std::begin(marks), std::end(marks), [&](const char* mark) { return text.ends_with(mark); });
}

/// Other digits: 1 to 4 for a short number, as many as before for a longer one. Zero stays zero.
std::string VaryNumber(const std::string& digits, Random& random)
{
    if (digits == "0")
        return digits;
    std::string varied(digits.size() < 4 ? 1 + random() % 4 : digits.size(), '0');
    for (char& digit : varied)
        digit = static_cast<char>('1' + random() % 9);
    return varied;
}

std::string VaryVariable(Random& random)
{
    const char letter = static_cast<char>('a' + random() % 4);
    return letter + std::to_string(1 + random() % variablesPerLetter_lc);
}

/// The same for the same seed, however a contender writes the expression.
std::string Vary(const std::string& text, unsigned seed)
{
    Random random(seed);
    // A letter in quotes becomes the same one everywhere, so that equal texts stay equal.
    std::string alphabet = "abcdefghijklmnopqrstuvwxyz";
    std::shuffle(alphabet.begin(), alphabet.end(), random);
    const auto exchange = [&](char letter) { return alphabet[static_cast<std::size_t>((letter | 0x20) - 'a')]; };

    std::string varied;
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size();) {
        std::string run = GetRun(std::string_view(text).substr(i));
        i += run.size();
        isQuoted ^= run == "\"";
        if (IsLetter(run[0]) && isQuoted)
            std::transform(run.begin(), run.end(), run.begin(), exchange);
        else if (run.size() == 1 && run[0] >= 'a' && run[0] <= 'd')
            run = VaryVariable(random);
        else if (IsDigit(run[0]) && !EndsBeforeExponent(varied))
            run = VaryNumber(run, random);
        varied += run;
    }
    return varied;
}
} // namespace

std::vector<Variable> MakeVariables()
{
    std::vector<Variable> variables = {{"a", variableA}, {"b", variableB}, {"c", variableC}, {"d", variableD}};
    for (std::size_t letter = 0; letter < 4; ++letter)
        for (unsigned i = 1; i <= variablesPerLetter_lc; ++i)
            variables.push_back({variables[letter].name + std::to_string(i), variables[letter].value + i * 0.01});
    return variables;
}

std::vector<Case> MakeVariants(const Case& testCase)
{
    std::vector<Case> variants{testCase};
    std::unordered_set<std::string> expressions;
    for (unsigned seed = 0; variants.size() <= variantCount_lc; ++seed) {
        if (expressions.insert(Vary(testCase.evaluator, seed)).second) {
            Case& variant = variants.emplace_back(testCase);
            for (std::string Case::*text : {&Case::evaluator, &Case::muParser, &Case::lua, &Case::tcl})
                variant.*text = Vary(variant.*text, seed);
        }
    }
    return variants;
}
