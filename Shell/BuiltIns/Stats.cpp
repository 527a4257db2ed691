#include "BuiltIns/BuiltIn.h"
#include "Statistics.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Stats <number>[,...]",
    L" Shows the count, the mean, the standard deviation of a sample and the range",
    L" of the numbers, which commas, semicolons or blanks separate. The digits of",
    L" the mean go as far as the deviation has some.",
    L"Example: Stats \"36.65,37.17,36.74\"",
    L"         Stats %%E{readings}",
};

class Stats : public BuiltIn
{
public:
    Stats() : BuiltIn(stats_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Stats::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options);
    Statistics statistics;
    for (unsigned int index = 0; index < arguments.Count(); ++index) {
        const WString& list = arguments.At(index);
        std::size_t position = 0;
        for (WString text = list.StrTok(L",; ", position); !text.IsEmpty(); text = list.StrTok(L",; ", position)) {
            double number = 0;
            if (!text.TryParseDouble(number))
                Fail(badValue, L"\"" + text + L"\" is no number");
            statistics.Add(number);
        }
    }
    if (statistics.GetCount() == 0)
        Fail(badValue, L"There are no numbers");
    GetPipe().DoWriteLine(statistics.Describe());
    return ExitCode(0);
}
} // namespace

constexpr CommandRecord stats_gb = {
    L"Stats", 2014, Create<Stats>, usage_lc, {}, CommandFlags::optionsFirst, {}, {1, ArgumentCount::any}};
