#include "Shell/Labsh.h"
#include "Support/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

namespace fs = std::filesystem;

namespace {
struct Change
{
    std::string line;
    std::string query; // an expression
    std::string former;
    std::string latter; // its values before and after the line
};

const std::vector<Change> changes_lc = {
    {"Status A=2", "%S{A}", "1", "2"},
    {"Status -n B=2", "IsNA(%S{B})", "TRUE", "FALSE"},
    {"Status -z C", "IsNA(%S{C})", "FALSE", "TRUE"},
    {"Config [S]A=2", "%C{[S]A}", "1", "2"},
    {"Config -n [New]B=2", "IsNA(%C{[New]B})", "TRUE", "FALSE"},
    {"Config -z [S]C", "IsNA(%C{[S]C})", "FALSE", "TRUE"},
    {"Usage A=2", "%U{A}", "1", "2"},
    {"Usage -z C", "IsNA(%U{C})", "FALSE", "TRUE"},
    {"Log -e EELog", "%C{[Log]EELog}", "FALSE", "TRUE"},
};

/// Whether the report has the error, or what the counters make of it.
bool TellsReason(const std::string& report, int error)
{
    const std::string reasons[] = {std::strerror(error), "attempt to write a readonly database",
        "a file beside it cannot be made", error == EIO ? "disk I/O error" : "database or disk is full"};
    return std::ranges::any_of(reasons, [&](const std::string& reason) { return report.find(reason) != report.npos; });
}

/// The line of the text that begins so; empty when there is none.
std::string FindLine(const std::string& text, const std::string& start)
{
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line) && !line.starts_with(start)) {
    }
    return line.starts_with(start) ? line : "";
}

/// Disks that fail, as FailingCalls has them.
class DiskTest : public testing::Test
{
protected:
    Labsh labsh;
    std::string note; // what has failed in the last run

    DiskTest()
    {
        std::string setup;
        for (const char* command : {"Status -n ", "Config -n [S]", "Usage "})
            setup += std::string(command) + "A=1\n" + command + "C=1\n";
        EXPECT_EQ(labsh.Run({}, setup), 0);
        fs::rename(labsh.folder.Path("data"), labsh.folder.Path("former"));
    }

    /// Puts the data back as they were at first.
    void Restore() const
    {
        fs::remove_all(labsh.folder.Path("data"));
        fs::copy(labsh.folder.Path("former"), labsh.folder.Path("data"));
    }

    /// Runs while the disk fails from that call on. Returns the exit status.
    int RunOnFaultyDisk(int error, int first, std::vector<std::string> arguments, const std::string& input = "")
    {
        const std::pair<const char*, std::string> variables[] = {{"LD_PRELOAD", FAILING_CALLS_FILE},
            {"FAIL_IN", labsh.folder.Path("data")}, {"FAIL_AT", std::to_string(first)},
            {"FAIL_WITH", std::to_string(error)}, {"FAIL_NOTE", labsh.folder.Path("note")}};
        labsh.folder.Write("note", "");
        for (const auto& [name, value] : variables)
            setenv(name, value.c_str(), 1);
        labsh.Start(std::move(arguments), input);
        for (const auto& [name, value] : variables)
            unsetenv(name);
        const int status = labsh.Wait();
        note = labsh.folder.Read("note");
        return status;
    }

    /// Each call fails alone, and there is no room from each of the first ones on, and from some of the others.
    template <typename Run>
    void ForEachCall(const Run& run)
    {
        for (const int error : {EIO, ENOSPC}) {
            int runs = 0;
            int first = 0;
            do {
                Restore();
                first += error == EIO ? 1 : 1 + first / 8;
                run(error, first);
                ASSERT_FALSE(HasFailure()) << std::strerror(error) << " from call " << first << ": " << note;
                ++runs;
            } while (!note.empty());
            EXPECT_GT(runs, 5);
        }
    }

    /// The output of a run on a sound disk, which has nothing to say about what was before.
    std::string RunSoundly(const std::string& input)
    {
        EXPECT_EQ(labsh.Run({}, input), 0);
        EXPECT_EQ(labsh.GetErrors(), "");
        for (const auto& entry : fs::directory_iterator(labsh.folder.Path("data")))
            EXPECT_THAT(
                entry.path().string(), testing::Not(testing::ContainsRegex("\\.(tmp|new|damaged[0-9]*)$|-(wal|shm)$")));
        return labsh.GetOutput();
    }
};
} // namespace

TEST_F(DiskTest, WhatCannotBeStoredIsRefusedAndHasNoEffect)
{
    std::string script;
    std::string queries;
    for (const Change& change : changes_lc) {
        script += change.line + "\n";
        queries += "Calc " + change.query + "\n";
    }
    script += "If true Then Assert -q 1=2\n"; // which goes to a log
    std::string notes;
    ForEachCall([&](int error, int first) {
        const int status = RunOnFaultyDisk(error, first, {"-k"}, script);
        notes += note;
        const std::string errors = labsh.GetErrors();
        std::istringstream values(RunSoundly(queries));
        int failures = 0;
        for (std::size_t i = 0; i < changes_lc.size(); ++i) {
            const Change& change = changes_lc[i];
            const std::string report = FindLine(errors, "stdin:" + std::to_string(i + 1) + ": ");
            const bool hasFailed = !report.empty();
            failures += hasFailed;
            EXPECT_TRUE(!hasFailed || TellsReason(report, error)) << report;
            std::string value;
            std::getline(values, value);
            EXPECT_EQ(value, hasFailed ? change.former : change.latter) << change.line << "\n" << errors;
        }
        EXPECT_EQ(status, failures == 0 ? 0 : 1) << errors;
        EXPECT_TRUE(failures > 0 || !note.starts_with("fsync ") || note.find(".ini.") == note.npos) << note;
        EXPECT_TRUE(error != EIO || failures <= 1 || note.find("Usage.db") != note.npos) << errors;
        EXPECT_NE(FindLine(errors, "stdin:" + std::to_string(changes_lc.size() + 1) + ": warning: If went on "), "");
    });
    for (const char* name : {"Status.ini.", "Config.ini."})
        EXPECT_NE(notes.find("fsync " + labsh.folder.Path("data/") + name), notes.npos) << "not on the disk by then";
}

TEST_F(DiskTest, AFirstStartDoesWithoutWhatCannotBeMade)
{
    fs::remove_all(labsh.folder.Path("former"));
    fs::create_directory(labsh.folder.Path("former"));
    ForEachCall([&](int error, int first) {
        fs::remove_all(labsh.folder.Path("data"));
        EXPECT_EQ(RunOnFaultyDisk(error, first, {"Calc %S{TempOptics}+%C{[Detection]MaxLight}"}), 0);
        EXPECT_EQ(labsh.GetOutput(), "4131.8\n");
        std::istringstream errors(labsh.GetErrors());
        for (std::string line; std::getline(errors, line);)
            EXPECT_TRUE(line.starts_with("labsh: warning: ") && line.find(labsh.folder.Path("data")) != line.npos &&
                TellsReason(line, error))
                << line;
        RunSoundly("Status TempOptics=1\nConfig [Detection]MaxLight=1\nUsage A=1\n");
        EXPECT_EQ(RunSoundly("Echo %S{TempOptics} %C{[Detection]MaxLight} %U{A}\n"), "1 1 1\n");
    });
}

TEST_F(DiskTest, ReportsAreWholeOrRefused)
{
    const std::string old = "<old/>\n";
    labsh.folder.Write("former/report.xml", old);
    labsh.folder.Write("former/session.txt", "before\n");
    ForEachCall([&](int error, int first) {
        const int status =
            RunOnFaultyDisk(error, first, {"--junit", "data/report.xml", "--log", "data/session.txt", "Assert 1=1"});
        const std::string report = labsh.folder.Read("data/report.xml");
        const bool isWhole = report.starts_with("<?xml") && report.ends_with("</testsuite>\n");
        const std::string session = labsh.folder.Read("data/session.txt");
        EXPECT_TRUE(isWhole || (status == 1 && (report.empty() || report == old))) << report;
        EXPECT_THAT(session, testing::StartsWith("before\n"));
        const bool isRecorded = session.find(" > Assert 1=1\n") != session.npos && session.ends_with(" 0 failed\n");
        EXPECT_TRUE(isRecorded || status == 1) << session;
        EXPECT_EQ(status != 0, !isWhole || !isRecorded);
        if (status != 0) {
            EXPECT_THAT(labsh.GetErrors(),
                testing::ContainsRegex(
                    "labsh: 0:1:10 File error: data/(report.xml|session.txt): " + std::string(std::strerror(error))));
        }
    });
}

TEST_F(DiskTest, OfOneThatCannotBeWrittenAllIsRead)
{
    Restore();
    std::string script;
    std::string values;
    for (const Change& change : changes_lc) {
        script += change.line + "\nCalc " + change.query + "\n";
        values += change.former + "\n";
    }
    EXPECT_EQ(RunOnFaultyDisk(EROFS, 1, {"-k"}, script), 1);
    EXPECT_EQ(labsh.GetOutput(), values);
    std::istringstream errors(labsh.GetErrors());
    std::size_t count = 0;
    for (std::string line; std::getline(errors, line); ++count)
        EXPECT_TRUE(line.starts_with("stdin:" + std::to_string(2 * count + 1) + ": ") && TellsReason(line, EROFS))
            << line;
    EXPECT_EQ(count, changes_lc.size());
    for (const auto& entry : fs::directory_iterator(labsh.folder.Path("former"))) {
        const std::string name = entry.path().filename();
        EXPECT_EQ(labsh.folder.Read("data/" + name), labsh.folder.Read("former/" + name)) << name;
    }
}
