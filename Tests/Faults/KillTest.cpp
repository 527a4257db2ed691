#include "Shell/AtTerminal.h"
#include "Shell/Labsh.h"
#include "Support/OwnEventTable.h"
#include "Support/Times.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <set>
#include <sstream>

namespace fs = std::filesystem;
using Time = std::chrono::steady_clock;

namespace {
/// Counts kills, forty per second, until they are enough; the environment variable KILLS asks for more.
class Kills
{
public:
    explicit Kills(int usual) : wanted(GetWanted(usual)) {}

    /// Waits for a moment to kill; false when there have been enough kills.
    bool WaitForNext()
    {
        if (count == wanted) {
            std::printf("%d kills in %.1f s\n", count, std::chrono::duration<double>(Time::now() - start).count());
            return false;
        }
        usleep(static_cast<useconds_t>(Draw(50'000)));
        ++count;
        return true;
    }
    /// A number from 0 up to below the limit, the same ones in each run.
    std::size_t Draw(std::size_t limit) { return random() % limit; }

private:
    const int wanted;
    int count = 0;
    std::mt19937 random;
    const Time::time_point start = Time::now();

    static int GetWanted(int usual)
    {
        const char* const text = std::getenv("KILLS");
        return text ? std::atoi(text) : usual;
    }
};

std::string RunScript(const std::string& home, const std::string& script)
{
    Labsh labsh;
    labsh.StartAlone({"--data", home, "-k"}, script);
    return labsh.Finish();
}

std::set<std::string> ListFiles(const std::string& folder)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename());
    return names;
}

/// The kinds of lines in the files: without times, and with all numbers made alike.
std::set<std::string> ListShapes(const std::string& folder, const std::string& name)
{
    std::set<std::string> shapes;
    for (const char* ending : {".old.txt", ".txt"}) {
        std::istringstream lines(
            TemporaryFolder::ReadFile(std::string(folder).append("/").append(name).append(ending)));
        for (std::string line; std::getline(lines, line);) {
            std::string shape;
            for (const char ch : HideTimes(line + (lines.eof() ? " and no line end" : ""))) {
                const bool isDigit = ch >= '0' && ch <= '9';
                if (!isDigit || !shape.ends_with('9'))
                    shape += isDigit ? '9' : ch;
            }
            shapes.insert(shape);
        }
    }
    return shapes;
}

/// A shell that writes to everything, and counts: it prints how far once that is stored.
class Writer
{
public:
    Writer(const std::string& home, int number) : home(home), name("K" + std::to_string(number)) {}

    std::string GetSetup() const
    {
        return "Usage " + name + "=0\nStatus -n " + name + "=0\nConfig -n [Kill]" + name + "=0\nEvent " + name + "=0\n";
    }
    void Start(int rounds)
    {
        const auto set = [this](const std::string& command) { return command + name + "=%E{n}|"; };
        labsh.folder.Write("script.txt",
            "Echo %U{" + name + "} %S{" + name + "} %C{[Kill]" + name + "}\nEvent " + name + "\n" + "While -l| -c" +
                std::to_string(rounds) + " true Do Set n=n+1|" + set("Usage ") + set("Status ") + set("Config [Kill]") +
                set("Event ") + "Echo %E{n}|If true Then Assert n<0\n");
        labsh.StartAlone({"--data", home, "--junit", "report.xml", "--log", "session.txt", "-f", "script.txt",
            "n=" + std::to_string(count)});
    }
    void Kill() const { labsh.Send(SIGKILL); }
    /// Looks at what the shell has left.
    void Wait()
    {
        const int status = labsh.Wait();
        const bool hasEnded = status == 1; // as with asserts that fail
        EXPECT_TRUE(hasEnded || status == 128 + SIGKILL) << labsh.Describe(status);
        const std::string report = labsh.folder.Read("report.xml");
        EXPECT_TRUE((report.empty() && !hasEnded) ||
            (report.starts_with("<?xml") && report.ends_with("</testcase>\n</testsuite>\n")))
            << report;
        ReadOutput();
    }
    std::set<std::string> ListSessionShapes() const { return ListShapes(labsh.folder.GetPath(), "session"); }

private:
    const std::string home;
    const std::string name;
    int count = 0;
    Labsh labsh;

    /// What the shells before have stored, first, and how far this one has counted.
    void ReadOutput()
    {
        std::istringstream lines(labsh.GetOutput());
        const auto isStored = [former = count](int value) { return value == former || value == former + 1; };
        std::string line;
        int values[4] = {};
        if (std::getline(lines, line) && !lines.eof()) {
            std::istringstream(line) >> values[0] >> values[1] >> values[2];
            values[3] = values[2];
            if (std::getline(lines, line) && !lines.eof())
                std::istringstream(line.substr(line.find('=') + 1)) >> values[3];
            EXPECT_TRUE(std::ranges::all_of(values, isStored)) << count << ": " << labsh.GetOutput();
        }
        while (std::getline(lines, line) && !lines.eof())
            if (line.find_first_not_of("0123456789") == line.npos)
                count = std::stoi(line);
    }
};

/// A shell at a terminal, where one line after the other is typed.
class Typist
{
public:
    explicit Typist(const std::string& home) : home(home) { Start(); }

    void Start() { session = std::make_unique<AtTerminal>(AtTerminal::Setup{.arguments = {"--data", home}}); }
    void TypeLine()
    {
        if (session->Take().find("labsh> ") != std::string::npos)
            session->Put("Status Typed=" + std::to_string(++count) + "\r");
    }
    void Kill() { session.reset(); }

private:
    const std::string home;
    std::unique_ptr<AtTerminal> session;
    int count = 0;
};

class KillTest : public testing::Test
{
protected:
    TemporaryFolder folder;
    const std::string home = folder.Path("data");

    /// The next shell finds all files whole, and none locked.
    void ExpectSound()
    {
        EXPECT_EQ(RunScript(home, "Calc 1+2\nStatus TempOptics=7\nConfig -n [Kill]Last=7\nUsage Last=7\nAssert 1=1\n"),
            "3\nexit 0");
        EXPECT_EQ(RunScript(home, "Echo %S{TempOptics} %C{[Kill]Last} %U{Last}"), "7 7 7\nexit 0");
    }
};
} // namespace

TEST_F(KillTest, AFirstStartIsMadeUpFor)
{
    const std::set<std::string> files = {
        "Config.ini", "Config.ini.lock", "Status.ini", "Status.ini.lock", "Usage.db", "Usage.db.lock"};
    for (Kills kills(15); kills.WaitForNext();) {
        fs::remove_all(home);
        std::vector<std::unique_ptr<Labsh>> shells(3);
        for (auto& shell : shells) {
            shell = std::make_unique<Labsh>();
            shell->StartAlone({"--data", home, "Calc 1+2"});
        }
        usleep(static_cast<useconds_t>(kills.Draw(30'000)));
        for (auto& shell : shells) {
            shell->Send(SIGKILL);
            shell->Wait();
            EXPECT_EQ(shell->GetErrors(), "");
        }
        ExpectSound();
        EXPECT_EQ(ListFiles(home), files);
    }
}

TEST_F(KillTest, WhatIsStoredStays)
{
    std::vector<std::unique_ptr<Writer>> writers;
    std::string setup = "Config [Log]EELog=true\nStatus -n Typed=0\n";
    for (int i = 0; i < 16; ++i) {
        writers.push_back(std::make_unique<Writer>(home, i));
        setup += writers.back()->GetSetup();
    }
    ASSERT_EQ(RunScript(home, setup), "exit 0");
    writers[0]->Start(2);
    writers[0]->Wait();
    const std::set<std::string> shapes[] = {
        ListShapes(home, "ErrorLog"), ListShapes(home, "EELog"), writers[0]->ListSessionShapes()};
    const auto countSettings = [this] {
        return std::ranges::count(TemporaryFolder::ReadFile(home + "/Config.ini"), '=') +
            std::ranges::count(TemporaryFolder::ReadFile(home + "/Status.ini"), '=');
    };
    const auto settings = countSettings();

    Kills kills(260);
    const auto drawRounds = [&] { return static_cast<int>(2 + kills.Draw(40)); };
    for (const auto& writer : writers)
        writer->Start(drawRounds());
    std::vector<std::unique_ptr<Typist>> typists(4);
    for (auto& typist : typists)
        typist = std::make_unique<Typist>(home);
    while (kills.WaitForNext()) {
        for (const auto& typist : typists)
            typist->TypeLine();
        const std::size_t victim = kills.Draw(writers.size() + typists.size());
        if (victim < writers.size()) {
            writers[victim]->Kill();
            writers[victim]->Wait();
            writers[victim]->Start(drawRounds());
        } else {
            typists[victim - writers.size()]->Kill();
            typists[victim - writers.size()]->Start();
        }
        EXPECT_EQ(countSettings(), settings);
    }
    typists.clear();
    for (const auto& writer : writers)
        writer->Kill();
    for (const auto& writer : writers) {
        writer->Wait();
        EXPECT_THAT(writer->ListSessionShapes(), testing::IsSubsetOf(shapes[2]));
    }
    EXPECT_THAT(ListShapes(home, "ErrorLog"), testing::IsSubsetOf(shapes[0]));
    EXPECT_THAT(ListShapes(home, "EELog"), testing::IsSubsetOf(shapes[1]));
    EXPECT_EQ(ListShapes(home, "History"), std::set<std::string>{"Status Typed=9"});
    ExpectSound();
    std::set<std::string> files = ListFiles(home);
    std::erase_if(files, [](const std::string& name) { return name.ends_with(".old.txt"); });
    EXPECT_EQ(files,
        (std::set<std::string>{"Config.ini", "Config.ini.lock", "EELog.txt", "ErrorLog.txt", "History.txt",
            "Status.ini", "Status.ini.lock", "Usage.db", "Usage.db.lock"}));
}
