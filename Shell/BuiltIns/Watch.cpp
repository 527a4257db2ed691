#include "BuiltIns/BuiltIn.h"
#include "Chart.h"
#include "Commands/CommandLine.h"
#include "Commands/RunObserver.h"
#include "Commands/StandardOutput.h"
#include "LocalTime.h"
#include "Screen.h"
#include "Services/Clock.h"
#include "Services/File.h"
#include "Statistics.h"
#include "StatusLine.h"
#include "Text/HostError.h"
#include "Window.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <optional>
#include <vector>

#include <unistd.h>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Watch [-w<seconds>] [-c<count>] [-o<file>] [-hist] <expression>",
    L" Evaluates the expression again and again, and shows its trend: the value,",
    L" the course up to now, and the least, greatest and mean value. Where the",
    L" output is no terminal, each reading is a line. Ctrl-C, or the count, ends it",
    L" with a summary.",
    L" A boolean counts as 1 or 0. When the first reading is no number, the command",
    L" fails; later ones that fail, or are no number, are gaps, which the summary",
    L" counts.",
    L"Options: (Must be specified before the expression)",
    L" -w<seconds>  Time from one reading to the next, 0 to 86400. Default: 0.5, and",
    L"               0 with -hist.",
    L" -c<count>    End after so many readings, gaps included.",
    L" -o<file>     Keep the readings in this file: a line with the time and the",
    L"               value of each, as soon as it is read. A gap has no value.",
    L" -hist        Show how often the readings lie in which range, at the end; of",
    L"               the last 100000.",
    L"Example: Watch -c60 -oreadings.csv %%S{TempOptics}",
    L"         Watch -hist -c600 Rand(1,6)",
};

constexpr NumberOption wait_lc(L"w", badOptionValue, 0, 86400, L"Take a reading every so many seconds");
constexpr WholeNumberOption count_lc(
    L"c", badOptionValue, 1, std::numeric_limits<int>::max(), L"End after so many readings");
constexpr FileOption file_lc(L"o", badOptionValue, 0, 4096, L"Keep the readings in this file");
constexpr FlagOption histogram_lc(L"hist", badOptionValue, L"Show how often the readings lie in which range");
constexpr OptionRecord options_lc[] = {wait_lc, count_lc, file_lc, histogram_lc};

constexpr std::size_t maxKept = 100'000;  // readings for the charts
constexpr std::size_t leastTrend = 8;     // cells; in a narrower window the trend stands alone
constexpr unsigned int drawInterval = 50; // milliseconds

class Watch : public BuiltIn
{
public:
    Watch() : BuiltIn(watch_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    WString expression;
    std::optional<double> seconds; // from one reading to the next
    int maxCount = std::numeric_limits<int>::max();
    bool isHistogram = false;
    WString fileName;

    std::optional<File> file;
    std::optional<Screen::Line> line; // at a terminal
    unsigned int drawnAt = 0;         // ticks
    std::deque<double> readings;      // the last ones; NaN stands for a gap
    Statistics statistics;
    unsigned int gapCount = 0;

    bool ReadOptions(Options& options);
    void ReadFurtherOptions(ArgumentList& arguments, Options& options);
    void TakeFileName();
    void TakeReadings();
    CommandRunner::Outcome Calculate(std::optional<std::size_t>& place);
    double Evaluate(WString& fault);
    double FailOrMakeGap(const ExitCode& code, const WString& message, WString& fault);
    void Keep(double number);
    void KeepInFile(double number);
    void Show(double number, const WString& fault);
    void Draw();
    void Summarize();
};

ExitCode Watch::Main(ArgumentList& arguments, Options& options)
{
    const bool hasFile = ReadOptions(options);
    Accept(arguments, options);
    expression = arguments.At(0);
    if (hasFile && fileName.IsEmpty()) {
        TakeFileName();
        ReadFurtherOptions(arguments, options);
    }
    const StatusLine::Pause withoutStatusLine;
    if (Screen::CanDrawOver(STDOUT_FILENO))
        line.emplace(STDOUT_FILENO);
    try {
        TakeReadings();
    } catch (const ExitCode& failure) {
        if (IsHostError(failure, HostError::Aborted))
            Summarize();
        throw;
    }
    Summarize();
    return ExitCode(0);
}

/// Reads the options; whether there is to be a file.
bool Watch::ReadOptions(Options& options)
{
    isHistogram = options.TryGetFlag(histogram_lc) || isHistogram;
    if (double value = 0; options.TryGetDouble(wait_lc, value))
        seconds = value;
    options.TryGetInt(count_lc, maxCount);
    return options.TryGetString(file_lc, fileName);
}

/// People write a blank before the name of the file, as other tools have it.
void Watch::TakeFileName()
{
    const WString text = expression;
    const std::size_t quote = text.StartsWith(L"\"", false) ? text.View().find(L'"', 1) : std::wstring_view::npos;
    if (quote == std::wstring_view::npos) {
        CommandLine::SplitName(text, fileName, expression);
    } else {
        fileName = WString(text.View().substr(1, quote - 1));
        expression = WString(text.View().substr(quote + 1)).Trim();
    }
    if (fileName.IsEmpty() || expression.IsEmpty())
        Fail(CommonExit::wrongCount, L"Behind -o stand the name of a file and the expression");
}

/// Takes what stands behind the name of the file for the command's options and argument.
void Watch::ReadFurtherOptions(ArgumentList& arguments, Options& options)
{
    CommandLine::Parse(expression, CommandFlags::restAsItStands, arguments, options);
    if (ReadOptions(options))
        Fail(CommonExit::badOption, L"The option -o is given twice");
    Accept(arguments, options);
    expression = arguments.At(0);
}

void Watch::TakeReadings()
{
    const auto interval = static_cast<unsigned int>(seconds.value_or(isHistogram ? 0 : 0.5) * 1000);
    unsigned int due = GetTickCount();
    for (int count = 1;; ++count) {
        WString fault;
        const double number = Evaluate(fault);
        Keep(number);
        Show(number, fault);
        if (count == maxCount)
            return;
        due += interval;
        const int wait = static_cast<int>(due - GetTickCount()); // the clock wraps
        if (wait > 0)
            SleepAbortable(wait);
        else
            due -= static_cast<unsigned int>(wait);
    }
}

/// Keeps the place where an expression could not be evaluated.
class PlaceOfFault : public RunObserver
{
public:
    void OnBadExpression(const CommandRun&, const WString&, std::size_t faultPlace) noexcept override
    {
        place = faultPlace;
    }

    std::optional<std::size_t> place;
};

/// Evaluates the expression unobserved, for nobody wants to follow each reading; of a fault `place` receives the place.
CommandRunner::Outcome Watch::Calculate(std::optional<std::size_t>& place)
{
    const RunObserver::Pause unobserved;
    PlaceOfFault fault;
    CommandRunner::Outcome outcome = CommandRunner::Run(L"Calc -q -- " + expression, GetPipe(), GetEnvironment(),
        CommandFlags::toleratesFailure | CommandFlags::noFailureLog);
    place = fault.place;
    return outcome;
}

/// The value of the expression; NaN and a fault for a gap.
double Watch::Evaluate(WString& fault)
{
    std::optional<std::size_t> place;
    const CommandRunner::Outcome outcome = Calculate(place);
    if (CommandRunner::EndsCallers(outcome.code))
        throw outcome.code;
    if (place && readings.empty())
        CommandRunner::NoteBadExpression(expression, *place);
    if (outcome.code.IsError() && readings.empty()) {
        for (const WString& note : outcome.notes)
            AddNote(note);
    }
    if (outcome.code.IsError())
        return FailOrMakeGap(ExitCode(0, outcome.code.GetModule(), outcome.code.GetNumber()), outcome.message, fault);
    double number = 0;
    bool flag = false;
    if (outcome.returnString.TryGetBool(flag))
        number = flag;
    else if (!outcome.returnString.TryParseDouble(number))
        return FailOrMakeGap(ExitCode(badValue), L"\"" + outcome.returnString + L"\" is no number", fault);
    return number;
}

/// What fails at once was typed wrong, most likely; what fails later may be right again at the next reading.
double Watch::FailOrMakeGap(const ExitCode& code, const WString& message, WString& fault)
{
    if (readings.empty()) {
        SetFailureMessage(message);
        throw code;
    }
    fault = message;
    return NAN;
}

void Watch::Keep(double number)
{
    KeepInFile(number);
    if (readings.size() == maxKept)
        readings.pop_front();
    readings.push_back(number);
    if (std::isnan(number))
        ++gapCount;
    else
        statistics.Add(number);
}

void Watch::KeepInFile(double number)
{
    const auto write = [this](const WString& text) {
        const std::string bytes = (text + L"\n").ToUtf8();
        file->Write(bytes.data(), bytes.size());
    };
    if (fileName.IsEmpty())
        return;
    if (!file) { // not before the first reading: one that fails leaves an older file as it is
        file.emplace(fileName, FileOpenMode::Create, FileAccessMode::Write);
        write(L"time,value");
    }
    write(FormatDateAndTime() + L"," + (std::isnan(number) ? WString() : FormatNumber(number)));
}

void Watch::Show(double number, const WString& fault)
{
    if (line && (readings.size() == 1 || GetTickCount() - drawnAt >= drawInterval))
        Draw();
    else if (!line && !isHistogram)
        GetPipe().DoWriteLine(fault.IsEmpty() ? FormatNumber(number) : L"gap: " + fault);
}

/// The last value, the trend in the cells that are left, and what the trend's heights stand for.
void Watch::Draw()
{
    const double spread = statistics.GetDeviation();
    const double last = readings.back();
    const WString value = std::isnan(last) ? L"gap" : FormatWithin(last, spread);
    WString range = WString::Format(L"  min %s  max %s  mean %s", FormatWithin(statistics.GetLeast(), spread),
        FormatWithin(statistics.GetGreatest(), spread), FormatWithin(statistics.GetMean(), spread));
    const std::size_t width = Window(STDOUT_FILENO).columns;
    const auto countTaken = [&] { return value.Length() + range.Length() + 3; }; // with blanks, and the last cell
    if (width < countTaken() + leastTrend)
        range.Clear();
    const std::size_t room = std::min(readings.size(), width - std::min(width, countTaken()));
    const std::vector<double> shown(readings.end() - static_cast<std::ptrdiff_t>(room), readings.end());
    line->Draw(value + L"  " + Chart::DrawTrend(shown, Screen::ShowsUnicode()) + range);
    drawnAt = GetTickCount();
}

void Watch::Summarize()
{
    if (readings.empty())
        return;
    if (line) {
        Draw();
        line->Keep();
    }
    if (isHistogram) {
        std::vector<double> numbers(readings.begin(), readings.end());
        std::erase_if(numbers, [](double number) { return std::isnan(number); });
        const unsigned int width = line ? Window(STDOUT_FILENO).columns - 1 : 79;
        for (const WString& bar : Chart::DrawHistogram(numbers, width, line && Screen::ShowsUnicode()))
            GetPipe().DoWriteLine(bar);
    }
    GetPipe().DoWriteLine(
        statistics.Describe() + (gapCount == 0 ? WString() : WString::Format(L"  gaps %u", gapCount)));
}

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Expression}};
} // namespace

constexpr CommandRecord watch_gb = {L"Watch", 2015, Create<Watch>, usage_lc, options_lc,
    CommandFlags::restAsItStands | CommandFlags::endsByInterrupt, arguments_lc, {1, 1}};
