// What is to be looked at: Watch and its charts, and the line that shows long work.

#include "Chart.h"
#include "Shell/AtTerminal.h"
#include "Shell/Labsh.h"
#include "Statistics.h"
#include "Support/Times.h"

#include <gmock/gmock.h>

namespace {
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// What a command shows at a terminal of this width.
std::string Show(const std::string& command, unsigned short width = 80, const std::string& locale = "C.UTF-8",
    const std::string& kind = "xterm")
{
    return AtTerminal({{"--fresh", command}, {{"LC_ALL", locale}, {"TERM", kind}}, width}).ReadTo();
}

std::string Join(const WStringArray& lines)
{
    std::string text;
    for (const WString& line : lines)
        text += line.ToUtf8() + "\n";
    return text;
}
} // namespace

TEST(ChartTest, TrendShowsHeights)
{
    const struct
    {
        std::vector<double> numbers;
        const char* blocks;
        const char* plain;
    } cases[] = {
        {{1, 2, 3, 4, 5, 6, 7, 8}, "▁▂▃▄▅▆▇█", "_.,-=+*#"},
        {{-1e308, NAN, 1e308}, "▁ █", "_ #"},
        {{5, 5}, "▅▅", "=="},
        {{}, "", ""},
    };
    for (const auto& [numbers, blocks, plain] : cases) {
        EXPECT_EQ(Chart::DrawTrend(numbers, true).ToUtf8(), blocks);
        EXPECT_EQ(Chart::DrawTrend(numbers, false).ToUtf8(), plain);
    }
}

TEST(ChartTest, HistogramCountsRanges)
{
    const struct
    {
        std::vector<double> numbers;
        const char* lines;
    } cases[] = {
        {{1, 3, 3, 3, 3}, "1  1 ██\n2  0\n3  4 █████\n"},
        {{0.5, 4, 12}, R"(  0 to 2  1 █
  2 to 4  0
  4 to 6  1 █
  6 to 8  0
 8 to 10  0
10 to 12  0
12 to 14  1 █
)"},
        {{4.9e-324, 1.5e-323}, "0 to 5e-308  2 █\n"},
        {{1e300, std::nextafter(1e300, 2e300)}, "1e+300 to 1e+300  2 █\n"},
        {{0.25, 0.25}, "0.25  2 ██\n"},
        {{}, ""},
    };
    for (const auto& [numbers, lines] : cases)
        EXPECT_EQ(Join(Chart::DrawHistogram(numbers, 10, true)), lines);
    EXPECT_THAT(Join(Chart::DrawHistogram({-1e308, 1e308}, 10, true)), StartsWith("-1e+308 to -8e+307  1 █\n"));
}

TEST(StatisticsTest, KeepsDigitsOfSmallSpreads)
{
    const struct
    {
        double start;
        double step;
        const char* description; // of start, start + step, start + 2 * step
    } cases[] = {
        {0, 1, "n 3  mean 1  sd 1  min 0  max 2"},
        {0, 0, "n 3  mean 0  sd 0  min 0  max 0"},
        {0, -1e-9, "n 3  mean -1e-09  sd 1e-09  min -2e-09  max 0"},
        {100, 1e-20, "n 3  mean 100  sd 0  min 100  max 100"},
        {1e9, 0.003, "n 3  mean 1000000000.003  sd 0.00300  min 1000000000  max 1000000000.006"},
        {3e15, 1000, "n 3  mean 3.000000000001e+15  sd 1000  min 3e+15  max 3.000000000002e+15"},
        {1.0 / 3, 12345, "n 3  mean 12345  sd 12345  min 0.333333333333333  max 24690.3333333333"},
    };
    for (const auto& [start, step, description] : cases) {
        Statistics statistics;
        for (int index = 0; index < 3; ++index)
            statistics.Add(start + index * step);
        EXPECT_EQ(statistics.Describe().ToUtf8(), description);
    }
}

TEST(WatchTest, DrawsTheTrendOverItself)
{
    const std::string watch = "Watch -w0.06 -c3 IF(1=1, 5, 0)";
    const std::string summary = "n 3  mean 5  sd 0  min 5  max 5\r\n";
    const struct
    {
        unsigned short width;
        const char* locale;
        std::string shown;
    } cases[] = {
        {80, "C.UTF-8", "\r5  ▅▅▅  min 5  max 5  mean 5\x1b[K\r\n" + summary},
        {80, "C", "\r5  ===  min 5  max 5  mean 5\x1b[K\r\n" + summary},
        {30, "C.UTF-8", "\r5  ▅▅▅\x1b[K\r\n" + summary},
        {6, "C.UTF-8", "\r5  ▅▅\x1b[K\r\n" + summary},
    };
    for (const auto& [width, locale, shown] : cases)
        EXPECT_THAT(Show(watch, width, locale), EndsWith(shown));
    EXPECT_EQ(Show(watch, 80, "C.UTF-8", "dumb"), "5\r\n5\r\n5\r\n" + summary);
}

TEST(WatchTest, FollowsTheWindowAndEndsWithASummary)
{
    AtTerminal terminal({{"--fresh", "Watch -w0.06 5"}, {{"LC_ALL", "C.UTF-8"}}});
    EXPECT_NE(terminal.ReadTo("▅▅▅  min"), "");
    terminal.SetWindow(24, 6);
    EXPECT_NE(terminal.ReadTo("\r5  ▅▅\x1b[K"), "");
    const std::string rest = terminal.Type("\x03", "");
    EXPECT_THAT(rest, HasSubstr("\r\nn "));
    EXPECT_THAT(rest, HasSubstr("  mean 5  sd 0  min 5  max 5\r\n"));
    EXPECT_EQ(rest.find("Aborted"), std::string::npos);
}

TEST(WatchTest, FileHoldsEachReadingAtOnce)
{
    Labsh labsh({"Watch -w0.01 -oreadings.csv 7.5"});
    const auto getText = [&] { return HideTimes(labsh.folder.Read("readings.csv")); };
    const std::string text = "time,value\nTIME,7.5\nTIME,7.5\nTIME,7.5\n";
    EXPECT_TRUE(WaitUntil([&] { return getText().size() >= text.size(); }));
    labsh.Send(SIGKILL);
    labsh.Wait();
    EXPECT_EQ(getText().substr(0, text.size()), text);
    EXPECT_THAT(getText(), EndsWith("TIME,7.5\n"));
}

TEST(StatusLineTest, ShowsLongWorkAndGoesAway)
{
    Labsh labsh;
    labsh.folder.Write("warm.txt", "# warm up\nWhile -w0.5 -c3 %S{TempOptics}<99 Do Echo %E{i}\nWait 1.1\nEcho done\n");
    const std::string run = "Run " + labsh.folder.Path("warm.txt");
    labsh.Start({run});
    AtTerminal dumb({{"--fresh", run}, {{"TERM", "dumb"}}});
    AtTerminal narrow({{"--fresh", run}, {}, 20});
    const std::string shown = Show(run);
    EXPECT_THAT(shown, HasSubstr("\r\x1b[K3\r\n"));
    EXPECT_THAT(shown, HasSubstr("\rwarm.txt 2/4  While 3 of 3  TempOptics=36.8  0:0"));
    EXPECT_THAT(shown, HasSubstr("\rwarm.txt 3/4  Wait  0:01 left\x1b[K"));
    EXPECT_THAT(shown, EndsWith("\r\x1b[Kdone\r\n"));
    EXPECT_THAT(narrow.ReadTo(), HasSubstr("\rwarm.txt 3/4  Wait \x1b[K"));
    EXPECT_EQ(dumb.ReadTo(), "1\r\n2\r\n3\r\ndone\r\n");
    EXPECT_EQ(labsh.Finish(), "1\n2\n3\ndone\nexit 0");
}
