#include "Instrument/System.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <tuple>

#include <sys/prctl.h>

/// A process that does nothing.
static ChildProcess Idle(const std::string& program, const std::string& name, const std::string& mark, const char* last)
{
    return ChildProcess([&] { return execl(program.c_str(), name.c_str(), mark.c_str(), last, nullptr) == 0; });
}

TEST(ProcessTable, IsSearchedByNameAndCommandLine)
{
    const TemporaryFolder folder;
    const std::string program = folder.Path("InstrumentServerOfTheBench"); // longer than the 15 characters of a name
    std::filesystem::create_symlink("/bin/sleep", program);
    const std::string unique = std::to_string(getpid()) + "1";
    const ChildProcess first = Idle(program, program, unique, "1");
    const ChildProcess second = Idle("/bin/sleep", program, unique, "2");
    ASSERT_LT(first.GetId(), second.GetId()); // unless they have come around
    const std::wstring line = L"*/instrumentserver* " + std::wstring(unique.begin(), unique.end());
    ASSERT_TRUE(WaitUntil([&] { // the programs have taken over
        return System::GetMatchingProcess(L"*", (line + L" 1").c_str()) == first.GetId() &&
            System::GetMatchingProcess(L"*", (line + L" 2").c_str()) == second.GetId();
    }));
    const std::tuple<const wchar_t*, std::wstring, int> rows[] = {
        {L"InstrumentServerOfTheBench", line + L" ?", first.GetId()},
        {L"instrumentSERVERof*", line + L"*", first.GetId()}, {L"InstrumentServe", line + L"*", -1},
        {L"sleep", line + L" 2", second.GetId()}, {L"*", line + L" ?", first.GetId()}, {L"*", line, -1},
        {L"sleep", line + L" 1", -1}, {L"nosuchcommand*", L"*", -1}};
    for (const auto& [command, commandLine, id] : rows)
        EXPECT_EQ(System::GetMatchingProcess(command, commandLine.c_str()), id)
            << WString(command).ToUtf8() << ": " << WString(commandLine.c_str()).ToUtf8();
    EXPECT_GT(System::GetMatchingProcess(L"instrumentserverof*bench", nullptr), 0);
    EXPECT_EQ(System::GetMatchingProcess(L"nosuchcommand*", nullptr), -1);
}

TEST(ProcessTable, LeavesOutTheDead)
{
    const ChildProcess child([] { return prctl(PR_SET_NAME, ") R dead") == 0; });
    siginfo_t info = {};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child.GetId()), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(System::GetMatchingProcess(L") R dead", nullptr), -1);
}
