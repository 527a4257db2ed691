#include "Instrument/System.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <grp.h>

#include <sys/mman.h>
#include <sys/stat.h>

namespace {
constexpr uid_t users_lc[] = {1, 65534};

/// Becomes a user of a group that both are in.
bool TryBecome(uid_t user)
{
    constexpr gid_t group = 65533;
    umask(002); // as where groups share files
    return setgroups(0, nullptr) == 0 && setresgid(group, group, group) == 0 && setresuid(user, user, user) == 0;
}
} // namespace

class Users : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const std::string data = folder.Path("data");
    const std::string profile = folder.Path("Profile"); // a copy: where the sources stand may be closed to other users

    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root may become other users";
    }
    Users()
    {
        std::filesystem::permissions(folder.GetPath(), std::filesystem::perms(0777));
        std::filesystem::copy(SOURCE_DIR "/Shell/Profile", profile);
    }

    bool WriteOften(uid_t user) const
    {
        constexpr int count = 30;
        const WString name = WString::Format(L"U%u", user);
        if (!TryBecome(user) || !System::Start(data, profile).IsEmpty() || !System::MayChange())
            return false;
        for (int i = 1; i <= count; ++i) {
            const WString value = WString::Format(L"%d", i);
            System::config.SetString(L"Users", name, value);
            System::config.Save();
            System::errorLog.DoWriteLine(name);
            if (!System::usage.Increment(L"Common") || !System::status.TrySet(name, value))
                return false;
            System::status.Save();
        }
        return true;
    }
};

TEST_F(Users, OfAGroupShareABench)
{
    ChildProcess first([this] { return WriteOften(users_lc[0]); });
    ChildProcess second([this] { return WriteOften(users_lc[1]); });
    EXPECT_TRUE(first.Wait());
    EXPECT_TRUE(second.Wait());
    EXPECT_TRUE(ChildProcess([this] {
        const bool hasStarted = TryBecome(users_lc[0]) && System::Start(data, profile).IsEmpty();
        int value = 0;
        return hasStarted && System::usage.TryGetUsageValue(L"Common", value) && value == 60 &&
            std::ranges::all_of(users_lc, [](uid_t user) {
                const WString name = WString::Format(L"U%u", user);
                int number = 0;
                return System::status.TryGetInt(name, number, 30, 30) &&
                    System::config.TryGetInt(L"Users", name, number, 30, 30);
            });
    }).Wait());
    const std::string log = TemporaryFolder::ReadFile(data + "/ErrorLog.txt");
    EXPECT_EQ(std::ranges::count(log, '\n'), 60) << log;
}

TEST_F(Users, AreKeptFromTheEventsOfOthers)
{
    const std::filesystem::path program = LABSH_FILE;
    const std::string copy = folder.Path("labsh");
    std::filesystem::copy(program, copy);
    for (const char* name : {HOST_FILE_NAME, "ExpressionEvaluator.dll"})
        std::filesystem::copy(program.parent_path() / name, folder.Path(name));
    const auto make = [&](uid_t user, const char* command) {
        return ChildProcess([&] {
            return TryBecome(user) && execl(copy.c_str(), "labsh", "--fresh", command, nullptr) == 0;
        }).Wait();
    };
    const std::string table = "labsh-users-" + std::to_string(getpid());
    setenv("LABSH_EVENTS", table.c_str(), 1);
    EXPECT_TRUE(make(users_lc[0], "Event First=1"));
    EXPECT_TRUE(make(users_lc[0], "Event First"));
    EXPECT_TRUE(make(users_lc[1], "AssertFail 2004:1:10 Event Second=1"));
    EXPECT_FALSE(make(users_lc[1], "Event First"));
    shm_unlink(("/" + table).c_str());
    unsetenv("LABSH_EVENTS");
}
