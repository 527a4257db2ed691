#include "Services/FileDescriptor.h"
#include "Shell/Labsh.h"
#include "Support/Times.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {
std::string RunLabsh(std::vector<std::string> arguments, const std::string& input = "")
{
    return Labsh(std::move(arguments), input).Finish();
}

/// Waits until the file is there, which a command of the shell makes, or the shell has ended.
/// Until something is in it: the file is made before it is written.
void WaitForFile(const Labsh& labsh, const std::string& name)
{
    WaitUntil([&] { return !labsh.folder.Read(name).empty() || !labsh.IsRunning(); });
}
} // namespace

TEST(ShellTest, WordsAreOneLine)
{
    EXPECT_EQ(RunLabsh({"Echo", "-- -x", "--help", "%d%n"}), "-x --help %d%n\nexit 0");
    EXPECT_EQ(RunLabsh({"Echo é € \xFF"}), "é € \uFFFD\nexit 0");
    EXPECT_EQ(RunLabsh({""}), "exit 0");
    EXPECT_EQ(RunLabsh({"Nope 1"}), "Nope: 0:1:2 Unknown command: Nope\nexit 1");
    EXPECT_EQ(RunLabsh({"Wait"}), "Wait: 2013:0:1 Wrong number of arguments\nexit 1");
    EXPECT_EQ(RunLabsh({"Exit"}), "exit 0");
    EXPECT_EQ(RunLabsh({"Help", "Wait"}),
        "Usage: Wait <seconds>\n Waits for 0 to 86400 seconds. Milliseconds count.\nexit 0");
}

TEST(ShellTest, WrongStartsAreReported)
{
    EXPECT_EQ(RunLabsh({"-y", "Echo"}),
        "The following argument was not expected: -y\nRun with --help for more information.\nexit 2");
    EXPECT_EQ(RunLabsh({"--junitt=x", "Echo"}),
        "The following argument was not expected: --junitt=x (did you mean --junit?)\n"
        "Run with --help for more information.\nexit 2");
    for (const std::string word : {"Echo", "=1", "a-b=1"})
        EXPECT_EQ(RunLabsh({"-f", "input", word}),
            word +
                ": behind a script stand its variables, as name=value\nRun with --help for more information.\nexit 2");
    EXPECT_EQ(RunLabsh({"./input", "x=1"}),
        "./input: 0:1:2 Unknown command: ./input; a script is run by: labsh -f ./input\nexit 1");
    Labsh bare;
    bare.folder.Write("my 'cal.txt", "");
    EXPECT_EQ(bare.Describe(bare.Run({"my 'cal.txt"})),
        "my: 0:1:2 Unknown command: my; a script is run by: labsh -f 'my '\\''cal.txt'\nexit 1");
    EXPECT_EQ(RunLabsh({"-f", "no%s.txt"}), "labsh: 0:1:10 File error: no%s.txt: No such file or directory\nexit 1");
    EXPECT_EQ(RunLabsh({"-f", "."}), "labsh: 0:1:10 File error: .: Is a directory\nexit 1");
    EXPECT_EQ(
        RunLabsh({"--plugin", "input", "Echo"}, "text"), "labsh: 0:1:10 File error: ./input: file too short\nexit 1");
    EXPECT_EQ(RunLabsh({"--plugin", PLUGIN_FILE, "Echo"}),
        "labsh: 0:1:10 File error: " PLUGIN_FILE ": it is already loaded\nexit 1");
    EXPECT_EQ(RunLabsh({"--plugin", TAKEN_NAME_FILE, "Echo"}),
        "labsh: 0:1:10 File error: " TAKEN_NAME_FILE ": it brings a function that is already there: max, FABS\nexit 1");
    Labsh labsh;
    const std::string copy = labsh.folder.Path("Copy.dll");
    std::filesystem::copy_file(PLUGIN_FILE, copy);
    EXPECT_EQ(labsh.Describe(labsh.Run({"--plugin", copy, "Echo"})),
        "labsh: 0:1:10 File error: " + copy + ": it offers a command that is already there\nexit 1");
    EXPECT_EQ(RunLabsh({"--plugin", BENCH_COMMANDS_FILE, "Echo"}),
        "labsh: 0:1:10 File error: " BENCH_COMMANDS_FILE ": it offers a command that is already there\nexit 1");
    EXPECT_EQ(RunLabsh({"--data", "/dev/null/x", "Echo"}),
        "\nlabsh: warning: File error: /dev/null/x: Not a directory; the values of the profile are used, and cannot be "
        "saved\nexit 0");
}

TEST(ShellTest, AMistypedNameIsRefused)
{
    const std::pair<const char*, const char*> rows[] = {
        {"Status TempOptic=37",
            "Status: 2010:0:5 There is no TempOptic; did you mean TempOptics? Status -n makes a new one"},
        {"Status Nothing=1", "Status: 2010:0:5 There is no Nothing; Status -n makes a new one"},
        {"Status TempOptic", "Status: 2010:0:5 There is no TempOptic; did you mean TempOptics?"},
        {"Status FrontDoorOpen=maybe", "Status: 2010:0:4 \"maybe\" is no bool, as FrontDoorOpen is"},
        {"Status TempOptics=", "Status: 2010:0:4 \"\" is no double, as TempOptics is"},
        {"Status UpTime=x", "Status: 2010:0:4 UpTime cannot be set: its value is always that of the moment"},
        {"Status -n [x=1", "Status: 2010:0:4 [x cannot be set to 1"},
        {"Log ErorLog", "Log: 2007:0:5 There is no log ErorLog (did you mean ErrorLog?)"},
        {"Config detection MaxLigth=1", "Config: 2002:0:1 Wrong number of arguments"},
        {"Config \"detection MaxLigth=1\"",
            "Config: 2002:0:5 There is no [detection]MaxLigth; did you mean [Detection]MaxLight? Config -n makes a new "
            "one"},
        {"Config [Debug]LogAssertFail=ture", "Config: 2002:0:4 \"ture\" is no boolean, as true is; Config -n takes it"},
        {"Config [Log]EELog=ture",
            "Config: 2002:0:4 \"ture\" does not fit: EELog: Bool, default false; Write EELog.txt"},
    };
    for (const auto& [line, report] : rows)
        EXPECT_EQ(RunLabsh({"--", line}), std::string(report) + "\nexit 1");
}

TEST(ShellTest, SaysAtTheStartThatNoLocaleKnowsTheCases)
{
    const std::string hide = "unshare -rm sh -c 'mount -t tmpfs none /usr/lib/locale && exec \"$@\"' sh ";
    if (std::system((hide + "true 2>/dev/null").c_str()) != 0)
        GTEST_SKIP() << "the locales of this system cannot be hidden from a process";
    const TemporaryFolder folder;
    const std::string line = "'Calc UCase(\"\u00E4b\")'";
    const std::string command =
        "cd " + folder.GetPath() + "; " + hide + "'" LABSH_FILE "' --data data " + line + " >output 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(folder.Read("output"),
        "labsh: warning: neither the locale C.UTF-8 nor en_US.UTF-8 is installed: only ASCII letters have two cases\n"
        "\u00E4B\n");
}

TEST(ShellTest, AFreshBenchIsThrownAway)
{
    Labsh labsh;
    Labsh other;
    const std::string temporary = labsh.folder.Path("tmp");
    std::filesystem::create_directories(temporary + "/labsh-backup"); // not one of its own
    const auto countFolders = [&] { return std::distance(std::filesystem::directory_iterator(temporary), {}); };
    setenv("TMPDIR", temporary.c_str(), 1);
    other.StartAlone({"--fresh"}, "Echo -fstarted x\nWait 86400");
    WaitForFile(other, "started");
    labsh.StartAlone({"--fresh"}, "Status TempOptics=1\nCalc %S{TempOptics}\nCalc %C{Log EELog}\n");
    EXPECT_EQ(labsh.Finish(), "1\nFALSE\nexit 0");
    EXPECT_EQ(countFolders(), 2);
    other.Send(SIGKILL);
    other.Wait();
    labsh.StartAlone({"--fresh", "Echo"});
    unsetenv("TMPDIR");
    EXPECT_EQ(labsh.Finish(), "\nexit 0");
    EXPECT_EQ(countFolders(), 1);
    EXPECT_FALSE(std::filesystem::exists(labsh.folder.Path("data")));
}

TEST(ShellTest, StandardInputIsAScript)
{
    const std::string hint = "a blank stands behind the final backslash, so the line is not continued\n";
    EXPECT_EQ(RunLabsh({}, "\xEF\xBB\xBF# comment\r\nEcho a\\\r\n b \\\n\r\n\r\nEcho last"), "a b\nlast\nexit 0");
    EXPECT_EQ(RunLabsh({}, "Echo a\n\n\nNope\nEcho b\n"), "a\nstdin:4: Nope: 0:1:2 Unknown command: Nope\nexit 1");
    EXPECT_EQ(RunLabsh({}, std::string("Echo a\0b\xC3|\n", 11)), "a\uFFFDb\uFFFD|\nexit 0");
    EXPECT_EQ(RunLabsh({}, "Echo end\\"), "end\\\nexit 0");
    EXPECT_EQ(RunLabsh({},
                  std::string("\xFF\xFE"
                              "E\0c\0h\0o\0 \0\x3D\xD8\x00\xDE\x3D\xD8\n\0",
                      20)),
        "\U0001F600\uFFFD\nexit 0");
    EXPECT_EQ(RunLabsh({}, std::string("\xFE\xFF\0E\0c\0h\0o\0 \x20\xAC\0\r\0\n\0E\0c\0h\0o\0 \0b\0", 31)),
        "€\nb\uFFFD\nexit 0");
    for (const std::string& start : {std::string("E\0c\0", 4), std::string("\xFF\xFE\0\0E\0\0\0", 8)})
        EXPECT_EQ(RunLabsh({}, start),
            "labsh: 0:1:10 File error: stdin: UTF-32, or UTF-16 without a byte order mark; save it as UTF-8\nexit 1");
    EXPECT_EQ(RunLabsh({"-k"}, "Nope \\\n \\ \nNope\nNope\nEcho \\ \n"),
        "\\\n"
        "stdin:1: Nope: 0:1:2 Unknown command: Nope; stdin:2: " +
            hint + "stdin:3: Nope: 0:1:2 Unknown command: Nope; stdin:2: " + hint +
            "stdin:4: Nope: 0:1:2 Unknown command: Nope\nexit 1");
}

TEST(ShellTest, StandardInputIsChecked)
{
    const std::string script = std::string(5000, '#') + "\nEcho %U{None}\n";
    EXPECT_EQ(RunLabsh({"--check", "-"}, script),
        "stdin:2:6: warning: Unknown reference: %U{None} [S024]\n  Echo %U{None}\n       ^~~~~~~~\n"
        "0 errors, 1 warning in 1 script\nexit 1");
    EXPECT_EQ(RunLabsh({"--check", "-"}, std::string("E\0c\0", 4)),
        "0 errors, 0 warnings in 0 scripts\n"
        "labsh: 2016:0:12 File error: stdin: UTF-32, or UTF-16 without a byte order mark; save it as UTF-8\nexit 3");
    EXPECT_EQ(RunLabsh({"--plugin", SECOND_PLUGIN_FILE, "--check", "-"}, "Second\n" + script),
        "0 errors, 0 warnings in 1 script\nexit 0")
        << "a command that tells nothing of itself may have made the counter";
}

TEST(ShellTest, LineLengthsAreLimited)
{
    const std::string command = "Echo " + std::string(4092, 'x');
    ASSERT_EQ(command.size(), 4097u);
    EXPECT_EQ(RunLabsh({}, command), command.substr(5) + "\nexit 0");

    constexpr std::size_t limit = 0x100000;
    const std::string full = "Echo -fx " + std::string(limit - 9, '(');
    const auto report = [](int line) {
        return "stdin:" + std::to_string(line) + ": labsh: 0:1:7 Command is too long\n";
    };
    const std::string continued = full.substr(1) + "\\\n";
    const std::string lines = full + "\r\n" + full + "-\nEcho a\n" + continued + continued + "-\\\n-\nEcho b\n";
    EXPECT_EQ(RunLabsh({"-k"}, lines + full + "\\ where the line is cut\nEcho c\n"),
        "a\nb\nc\n" + report(2) + report(4) + report(9) + "exit 1");
}

TEST(ShellTest, OutputThatCannotBeWrittenIsAnError)
{
    Labsh labsh;
    std::filesystem::create_symlink("/dev/full", labsh.folder.Path("output"));
    EXPECT_EQ(labsh.Run({"Echo", "x"}), 1);
    EXPECT_EQ(labsh.Run({"-k"}, "While -er* 1=1 DO If 1=1 Then Echo x\nEcho -fbehind\n"), 1);
    EXPECT_EQ(
        labsh.GetErrors(), "labsh: 0:1:10 File error: standard output cannot be written: No space left on device\n");
    EXPECT_FALSE(std::filesystem::exists(labsh.folder.Path("behind")));
    labsh.Run({"--junit", "out.xml"}, "Assert 1=1\nEcho x\n");
    EXPECT_THAT(labsh.GetErrors(), testing::StartsWith("1 assert, 1 passed, 0 failed\n"));
    EXPECT_THAT(labsh.folder.Read("out.xml"), testing::EndsWith("</testsuite>\n"));
    Labsh limited; // by what a file may hold
    const rlimit small = {4096, RLIM_INFINITY};
    rlimit former = {};
    ASSERT_EQ(prlimit(0, RLIMIT_FSIZE, &small, &former), 0);
    limited.Start({"Calc 1"});
    ASSERT_EQ(prlimit(0, RLIMIT_FSIZE, &former, nullptr), 0);
    EXPECT_EQ(limited.Wait(), 0);
    EXPECT_EQ(limited.GetOutput(), "1\n");
    for (const char* option : {"--log", "--junit"})
        EXPECT_THAT(RunLabsh({option, "/dev/full", "Assert 1=1"}),
            testing::AllOf(testing::HasSubstr("labsh: 0:1:10 File error: /dev/full: No space left on device\n"),
                testing::EndsWith("exit 1")));
}

TEST(ShellTest, OutputIsLive)
{
    for (const std::string line : {"Echo a\nWait 86400", "While 1=1 DO Echo a; Wait 86400",
             "While 1=1 DO Echo a; While 1=1 DO Set x=1", "Echo a\nWhile -w86400 1=1 DO Set x=1"}) {
        Labsh labsh({}, line);
        EXPECT_TRUE(WaitUntil([&] { return labsh.GetOutput() == "a\n" || !labsh.IsRunning(); })) << line;
        EXPECT_TRUE(labsh.IsRunning()) << line;
    }
    Labsh labsh; // a wait with output of its own command
    labsh.Start({"Assert -c1000 1=2"});
    EXPECT_TRUE(WaitUntil([&] { return labsh.GetOutput().starts_with("Retry: 1\n"); }));
    EXPECT_TRUE(labsh.IsRunning());
}

TEST(ShellTest, AReaderThatGoesAwayEndsTheRunQuietly)
{
    Labsh labsh;
    const std::string pipe = labsh.folder.Path("output");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    auto reader = std::make_unique<FileDescriptor>(open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    labsh.Start({"-k", "--junit", "out.xml"},
        "Echo -fstarted x\nWait 0.2\nStatus -n -d86400 ShellTest=7\nAssert 1=1\nWhile 1=1 DO Echo x\n");
    WaitForFile(labsh, "started");
    reader.reset();
    EXPECT_EQ(labsh.Wait(), 128 + SIGPIPE);
    EXPECT_EQ(labsh.GetErrors(), "");
    EXPECT_THAT(labsh.folder.Read("out.xml"),
        testing::AllOf(
            testing::HasSubstr("tests=\"1\" failures=\"0\" errors=\"0\""), testing::EndsWith("</testsuite>\n")));
    EXPECT_THAT(labsh.folder.Read("data/Status.ini"), testing::HasSubstr("ShellTest=int:7"));
}

TEST(ShellTest, NobodyWhoIsStuckKeepsItFromEnding)
{
    for (const char* stream : {"output", "errors"}) {
        Labsh labsh;
        const std::string pipe = labsh.folder.Path(stream);
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        const FileDescriptor reader(open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        const int size = fcntl(reader.Get(), F_SETPIPE_SZ, 4096);
        labsh.Start({"-x", "--junit", "out.xml"}, "Assert 1=1\nWhile 1=1 DO Echo " + std::string(50, 'x'));
        int filled = 0;
        EXPECT_TRUE(WaitUntil([&] {
            const int former = filled;
            usleep(20'000); // long enough to write more, where there is room
            return ioctl(reader.Get(), FIONREAD, &filled) == 0 && filled > size - 150 && filled == former;
        }));
        labsh.Send(SIGTERM);
        usleep(100'000); // into the second that it gives the reader
        labsh.Send(SIGTERM);
        EXPECT_EQ(labsh.Wait(), 128 + SIGTERM) << stream;
        EXPECT_THAT(labsh.folder.Read("out.xml"), testing::EndsWith("</testsuite>\n"));
        if (stream == std::string("errors"))
            continue;
        EXPECT_THAT(labsh.GetErrors(),
            testing::EndsWith(
                "\n1 assert, 1 passed, 0 failed\n"
                "labsh: 0:1:10 File error: standard output cannot be written: its reader takes nothing\n"));
    }
    Labsh labsh;
    ASSERT_EQ(mkfifo(labsh.folder.Path("script").c_str(), 0600), 0);
    labsh.Start({"-f", "script"});
    WaitForFile(labsh, "data/Config.ini");
    labsh.Send(SIGTERM);
    EXPECT_EQ(labsh.Finish(), "labsh: 0:1:4 Aborted\nexit 143");
}

TEST(ShellTest, ScriptsTakeVariables)
{
    EXPECT_EQ(RunLabsh({"-f", "input", "target=40", "unit=A 7", "text="},
                  "Set -i target=37\nEcho %E{target} %E{unit} (%E{text})\nExit %E{target}\n"),
        "40 A 7 ()\nexit 40");
    EXPECT_EQ(RunLabsh({"-f", "input"}, "Set -i target=37\nEcho %E{target}\n"), "37\nexit 0");
    EXPECT_EQ(RunLabsh({"-k"}, "Nope\nExit 256\nExit\n"),
        "stdin:1: Nope: 0:1:2 Unknown command: Nope\nstdin:2: Exit: 2005:0:4 256 is no exit status from 0 to 255\n"
        "exit 1");
    EXPECT_EQ(RunLabsh({"-k"}, "Nope 1\nIf 1=1 Then Exit 0\n"), "stdin:1: Nope: 0:1:2 Unknown command: Nope\nexit 0");
}

TEST(ShellTest, TraceShowsWhatRuns)
{
    Labsh labsh;
    std::filesystem::create_directory(labsh.folder.Path("sub"));
    labsh.folder.Write("sub/inner.txt", "Echo %E{x}\n");
    EXPECT_EQ(labsh.Run({"-x", "--log", "log", "-f", "input", "x=1"},
                  "If x>1 Then Nope\nWhile -er* i<2 DO Set x=x+1; Assert -q x=0\nRun sub/inner.txt\nSet -z x\n"),
        0);
    std::istringstream lines(labsh.GetErrors());
    std::string trace;
    for (std::string line; std::getline(lines, line); trace += line.substr(line.find(' ') + 1) + "\n")
        EXPECT_THAT(line, testing::MatchesRegex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} .*"));
    EXPECT_EQ(trace, R"(input:1:   x=1
input:1: + If x>1 Then Nope
input:1:   x>1 -> FALSE
input:2: + While -er* i<2 DO Set x=x+1; Assert -q x=0
input:2:   EC_While=0
input:2:   i=1
input:2:   i<2 -> TRUE
input:2: ++ Set x=x+1
input:2:    x=2
input:2: ++ Assert -q x=0
input:2:    x=0 -> FALSE
input:2:    -> 9015:0:13 Assertion "x=0" failed!
input:2:   EC_While=9015:0:13
input:2:   i=2
input:2:   i<2 -> FALSE
input:3: + Run sub/inner.txt
sub/inner.txt:1: ++ Echo %E{x}
sub/inner.txt:1:    -> Echo 2
input:4: + Set -z x
input:4:   x deleted
)");
    EXPECT_THAT(HideTimes(labsh.folder.Read("log")),
        testing::HasSubstr("TIME > Echo %E{x}\n"
                           "TIME ! TIME sub/inner.txt:1: ++ Echo %E{x}\n"));
}

TEST(ShellTest, AssertsAreReported)
{
    Labsh labsh;
    labsh.folder.Write("inner", "Set t=\"]]>\x01\uFFFF\"\nAssert t=\"<&\"");
    labsh.folder.Write("out.xml", "an old one");
    EXPECT_THAT(labsh.Describe(labsh.Run({"-k", "--junit", "out.xml"},
                    "Run inner\nWhile -er* -c2 1=1 DO If 1=1 THEN Assert i=4\n"
                    "While -er* -c1 1=1 DO While -er9 1=1 DO Assert i=5\n"
                    "AssertFail 9015:* Assert i=6\nAssertFail * Assert i=1\nNope <\n")),
        testing::EndsWith("6 asserts, 1 passed, 1 tolerated, 4 failed: lines inner:2, 2, 5\nexit 1"));
    EXPECT_EQ(HideTimes(labsh.folder.Read("out.xml")), R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuite name="labsh" tests="7" failures="4" errors="1" skipped="1">
  <testcase classname="inner" name="Assert t=&quot;&lt;&amp;&quot;" file="inner" line="2" TIME>
    <failure type="9015:0:13" message="Assertion &quot;t=&quot;&lt;&amp;&quot;&quot; failed!">Environment:t=]]&gt;??</failure>
  </testcase>
  <testcase classname="stdin" name="Assert i=4" file="stdin" line="2" TIME>
    <failure type="9015:0:13" message="Assertion &quot;i=4&quot; failed!">Environment:i=1</failure>
  </testcase>
  <testcase classname="stdin" name="Assert i=4" file="stdin" line="2" TIME>
    <failure type="9015:0:13" message="Assertion &quot;i=4&quot; failed!">Environment:i=2</failure>
  </testcase>
  <testcase classname="stdin" name="Assert i=5" file="stdin" line="3" TIME>
    <skipped type="9015:0:13" message="Assertion &quot;i=5&quot; failed!">Environment:i=1</skipped>
  </testcase>
  <testcase classname="stdin" name="AssertFail 9015:* Assert i=6" file="stdin" line="4" TIME>
  </testcase>
  <testcase classname="stdin" name="AssertFail * Assert i=1" file="stdin" line="5" TIME>
    <failure type="2001:0:6" message="The command succeeded">Environment:i=1</failure>
  </testcase>
  <testcase classname="stdin" name="Nope" file="stdin" line="6">
    <error type="0:1:2" message="Unknown command: Nope"/>
  </testcase>
</testsuite>
)");
    EXPECT_EQ(labsh.Run({"--junit", "out.xml", "Echo"}), 0);
    EXPECT_EQ(labsh.GetErrors(), "0 asserts, 0 passed, 0 failed\n");
    EXPECT_EQ(labsh.Run({"--junit", "out.xml", "If 1=1 Then Assert -q kaka=1"}), 1);
    EXPECT_THAT(labsh.folder.Read("out.xml"), testing::HasSubstr(">note: kaka does not exist</failure>"));
    EXPECT_EQ(labsh.Run({"--junit", "out.xml"}, "If 1=1 Then Assert 1=2\nExit 0\n"), 0);
    for (const char* option : {"-f", "--plugin"}) {
        EXPECT_EQ(labsh.Run({"--junit", "out.xml", option, "none"}), 1);
        EXPECT_THAT(labsh.folder.Read("out.xml"), testing::HasSubstr("errors=\"1\""));
    }
    std::string script;
    for (int line = 1; line <= 22; ++line)
        script += "While -c2 1=1 DO If 1=1 THEN Assert 1=2\n";
    labsh.Run({"--junit", "out.xml"}, script);
    EXPECT_THAT(labsh.GetErrors(),
        testing::EndsWith("\n44 asserts, 0 passed, 44 failed: lines 1, 2, 3, 4, 5, 6, 7, 8, "
                          "9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20 and 2 more\n"));
}

TEST(ShellTest, SeveralPlugins)
{
    Labsh labsh;
    EXPECT_EQ(labsh.Describe(labsh.Run({"--plugin", SECOND_PLUGIN_FILE, "Second"})), "second\nexit 0");
    EXPECT_EQ(labsh.Describe(labsh.Run({"--plugin", SECOND_PLUGIN_FILE, "Second", "x"})),
        "x\nSecond: 5000:0:1 Failed on purpose\nexit 1");
    labsh.Run({"--plugin", SECOND_PLUGIN_FILE, "--plugin", FUNCTIONS_ONLY_FILE, "Plugins"});
    EXPECT_THAT(labsh.GetOutput(),
        testing::MatchesRegex(
            "[^\n]*/ExpressionEvaluator.dll\n"
            "  Version: 6.0.6.5480\n(  [A-Z][A-Za-z]*: [^\n]+\n){5}" SECOND_PLUGIN_FILE "\n" FUNCTIONS_ONLY_FILE
            "\n[^\n]*/ScriptTools.dll\n  Version: [0-9.]+\n(  [A-Z][A-Za-z]*: [^\n]+\n)+"));
    EXPECT_EQ(labsh.Describe(labsh.Run({"--plugin", SECOND_PLUGIN_FILE, "Test -junit\"the report.xml\" sec*"})),
        "Second: 6 checks, 4 failures\n"
        "  second: expected \"<&>\", got \"\"\x01\"\"\n"
        "  %s: expected 0.5, got 0.25\n"
        "  output\n"
        "  The test threw: 0:1:10 File error: on\npurpose\uFFFF\n"
        "Test: 2011:0:6 1 of 1 tests failed\nexit 1");
    EXPECT_THAT(labsh.folder.Read("data/ErrorLog.txt"), testing::Not(testing::HasSubstr("1=2")));
    EXPECT_EQ(labsh.folder.Read("the report.xml"), R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuite name="labsh" tests="1" failures="1" errors="0" skipped="0">
  <testcase classname="Second" name="Second plug-in">
    <failure message="second: expected &quot;&lt;&amp;&gt;&quot;, got &quot;&quot;?&quot;&quot;"/>
    <failure message="%s: expected 0.5, got 0.25"/>
    <failure message="output"/>
    <failure message="The test threw: 0:1:10 File error: on&#10;purpose?"/>
  </testcase>
</testsuite>
)");
    EXPECT_EQ(labsh.Run({"--plugin", SECOND_PLUGIN_FILE, "Test exports"}), 0) << labsh.GetOutput();
    EXPECT_EQ(labsh.Describe(labsh.Run({"Test", "Second"})), "Test: 2011:0:5 There is no test Second\nexit 1");
}

TEST(ShellTest, FunctionsOfPlugins)
{
    Labsh labsh;
    const auto run = [&](std::vector<std::string> line, const std::string& input = "") {
        line.insert(line.begin(), {"--plugin", FUNCTIONS_ONLY_FILE, "--plugin", SECOND_PLUGIN_FILE});
        return labsh.Describe(labsh.Run(std::move(line), input));
    };
    EXPECT_EQ(run({}, "Calc lab.half(SECOND.TWICE(\"second.cube(2)+1\"))\nCalc IsErr(Lab.Half(sqrt(-1)))\n"),
        "9\nTRUE\nexit 0");
    EXPECT_EQ(run({"Help LAB.HALF"}), "Lab.Half(x) - Half of x.\n    Calc Lab.Half(3)\n    # 1.5\nexit 0");
    EXPECT_EQ(run({"Help second.twice"}), "Second.Twice(text) - Twice the value of an expression.\nexit 0");

    labsh.Run({"Calc", "-help"});
    std::string help = labsh.GetOutput();
    help.insert(help.find("Expression evaulator operators:"),
        " Lab.Half(x) - Half of x.\n     Lab.Half(3) -> 1.5\n Lab.Third(x) - A third of x.\n"
        " Second.Cube(x) - The third power of x.\n Second.Twice(text) - Twice the value of an expression.\n");
    EXPECT_EQ(run({"Calc", "-help"}), help + "exit 0");

    // The automatic tests of the evaluator take other plug-ins into account.
    EXPECT_EQ(labsh.Run({"--plugin", SERIES_FILE, "Test"}), 0) << labsh.GetOutput();
    EXPECT_THAT(labsh.GetOutput(), testing::HasSubstr(" checks, 0 failures\n"));
}

TEST(ShellTest, ThePluginOfTheDocuments)
{
    Labsh labsh;
    const std::string commands = "Calc Series(\"Cbrt(i)\", 8)\nTable 3 \"i & \\\": \\\" & Series(\\\"i\\\", i)\"\n"
                                 "Calc IsErr(Series(\"1/0\", 2)) and IsErr(Series(\"i\", 0))\nHelp cbrt\n";
    EXPECT_EQ(labsh.Describe(labsh.Run({"--plugin", SERIES_FILE}, commands)),
        "12.7295993944517\n1: 1\n2: 3\n3: 6\nTRUE\nCbrt(x) - The cube root of x.\n    Calc Cbrt(27)\n    # 3\nexit 0");
}

TEST(ShellTest, DelayedStatusIsSetBeforeTheEnd)
{
    Labsh labsh;
    EXPECT_EQ(labsh.Run({"-k"}, "Status -n -d0.05 ShellTest=7\nNope\nStatus -n -d0.01 Other=true\n"), 1);
    EXPECT_EQ(labsh.Run({}, "Status ShellTest\nStatus Other\n"), 0);
    EXPECT_EQ(labsh.GetOutput(), "ShellTest=7\nOther=true\n");
}

TEST(ShellTest, CommandsAreCountedBeforeALongOneEnds)
{
    for (const char* line : {"Wait 86400", "While true Do Set x=1", "Status -d86400 HotelDoorOpen=true"}) {
        Labsh labsh;
        labsh.Start({}, std::string("Echo\nEcho\n") + line);
        Labsh reader;
        const std::string data = labsh.folder.Path("data");
        EXPECT_TRUE(WaitUntil([&] {
            reader.Run({"--data", data, "Usage Command.Echo"});
            return reader.GetOutput() == "Command.Echo=2\n";
        })) << line;
    }
}

TEST(ShellTest, SignalsEndTheScript)
{
    // Which of the commands notices the signal, and so the id in the code, is a matter of chance.
    const struct
    {
        const char* line;
        const char* place;
        int signal = SIGINT;
    } cases[] = {
        {"Wait 86400", "stdin:3: Wait"},
        {"Wait 86400", "stdin:3: Wait", SIGTERM},
        {"Status -d86400 HotelDoorOpen=true", "(stdin:3: Status|(behind\n)?labsh)"},
        {"AssertFail * Wait 86400", "stdin:3: AssertFail"},
        {"If 1=1 THEN Wait 86400; Wait 86400", "stdin:3: If", SIGHUP},
        {"While -er* 1=1 DO If 1=1 THEN Wait 86400", "stdin:3: While"},
        {"While -er* 1=1 DO Nope", "stdin:3: While"},
        {"While 1=1 DO Set x=1", "stdin:3: While", SIGTERM},
        {"Assert -q -c1000 1=2", "stdin:3: Assert"},
        {"Run forever", "stdin:3: Run"},
    };
    for (const auto& test : cases) {
        Labsh labsh;
        labsh.folder.Write("forever", "Wait 86400");
        labsh.Start(
            {"-k"}, std::string("Status -n -d86400 ShellTest=7\nEcho -fstarted x\n") + test.line + "\nEcho behind");
        WaitForFile(labsh, "started");
        labsh.Send(test.signal);
        EXPECT_THAT(labsh.Finish(),
            testing::MatchesRegex(
                test.place + std::string(": [0-9]+:1:4 Aborted\nexit ") + std::to_string(128 + test.signal)));
        EXPECT_THAT(labsh.folder.Read("data/Status.ini"), testing::HasSubstr("ShellTest=int:7"));
        labsh.Run({"Usage", "Command.Echo"});
        EXPECT_THAT(labsh.GetOutput(), testing::StartsWith("Command.Echo="));
    }
}
