#include "Instrument/OS9EventManager.h"
#include "Shell/Labsh.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <thread>

#include <sys/mman.h>
#include <sys/syscall.h>

/// A table of events for this test program alone.
class OwnEventTable : public testing::Environment
{
public:
    void SetUp() override { setenv("LABSH_EVENTS", name.c_str(), 1); }
    void TearDown() override { shm_unlink(("/" + name).c_str()); }

private:
    std::string name = "labsh-test-" + std::to_string(getpid());
};

[[maybe_unused]] static testing::Environment* const ownEventTable_lc =
    testing::AddGlobalTestEnvironment(new OwnEventTable);

class Events : public testing::Test, protected OS9EventManager
{
protected:
    void SetUp() override { DeleteAll(); }
    void TearDown() override { DeleteAll(); }

    static WStringArray List()
    {
        WStringArray names;
        GetNames(names);
        return names;
    }
    static void DeleteAll()
    {
        for (const WString& name : List())
            TryDelete(name);
    }
    /// The event's value, -1 when there is none.
    static int Read(const WString& name)
    {
        OS9EventData* event = GetOS9Event(name);
        const int value = event ? event->Read() : -1;
        if (event)
            event->ReleaseReference();
        return value;
    }
    /// Takes references and gives them back.
    static bool ReferOften()
    {
        for (int i = 0; i < 20000; ++i) {
            if (Read(L"E") < 0)
                return false;
        }
        return true;
    }
    /// The references left over when two threads and another process have taken and given back many at once.
    static int CountAfterReferring()
    {
        TryCreate(L"E", 1);
        ChildProcess child(ReferOften);
        std::thread thread(ReferOften);
        const bool done = ReferOften();
        thread.join();
        return child.Wait() && done ? GetReferenceCount(L"E") : -1;
    }
};

TEST_F(Events, AreNamedValues)
{
    const WString longest(63, L'a');
    EXPECT_TRUE(TryCreate(L"Tür", INT_MIN) && TryCreate(L"tür", 2) && TryCreate(longest, 4));
    EXPECT_FALSE(TryCreate(L"Tür", 3));
    EXPECT_EQ(Join(List()), longest.ToUtf8() + "\nTür\ntür");
    EXPECT_EQ(Read(L"Tür"), INT_MIN);
    EXPECT_EQ(Read(longest), 4);
    EXPECT_TRUE(TryDelete(L"Tür"));
    EXPECT_FALSE(TryDelete(L"Tür"));
    EXPECT_EQ(Read(L"Tür"), -1);
    EXPECT_EQ(Read(L"tür"), 2);
    for (const WString& name : {WString(), WString(64, L'a'), WString(L"a\0b", 3)})
        EXPECT_FALSE(TryCreate(name, 1)) << name.ToUtf8();
}

TEST_F(Events, DeletedOnesServeUntilTheLastReferenceIsGivenBack)
{
    ASSERT_TRUE(TryCreate(L"E", 1));
    OS9EventData* first = GetOS9Event(L"E");
    OS9EventData* second = GetOS9Event(L"E");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(GetReferenceCount(L"E"), 2);
    EXPECT_TRUE(TryDelete(L"E"));
    EXPECT_EQ(GetReferenceCount(L"E"), -1);
    ASSERT_TRUE(TryCreate(L"E", 10));
    first->Write(2);
    EXPECT_EQ(Read(L"E"), 10) << "the new event is another one";
    first->ReleaseReference();
    EXPECT_EQ(second->Read(), 2);
    second->ReleaseReference();
    EXPECT_EQ(GetReferenceCount(L"E"), 0);
}

TEST_F(Events, ThereIsRoomFor256)
{
    int count = 0;
    while (TryCreate(WString::Format(L"E%d", count), count))
        ++count;
    EXPECT_EQ(count, 256);
    EXPECT_EQ(Read(L"E255"), 255);
    OS9EventData* event = GetOS9Event(L"E7");
    TryDelete(L"E7");
    EXPECT_FALSE(TryCreate(L"New", 1)) << "the reference keeps the room";
    event->ReleaseReference();
    EXPECT_TRUE(TryCreate(L"New", 1));
}

TEST_F(Events, AreSharedWithProcessesThatStartedByThemselves)
{
    ASSERT_TRUE(TryCreate(L"E", 1));
    OS9EventData* event = GetOS9Event(L"E");
    EXPECT_EQ(Labsh({}, "Event E\nEvent E=73\nEvent Other=5\nEvent -z E\n").Finish(), "E=1\nexit 0");
    EXPECT_EQ(event->Read(), 73);
    EXPECT_EQ(Join(List()), "Other");
    event->ReleaseReference();
}

/// Whether the system tells that the owner of a mutex has died. An emulator that runs single programs does not.
static bool HasRobustMutexes()
{
    void* list = nullptr;
    std::size_t size = 0;
    return syscall(SYS_get_robust_list, 0, &list, &size) == 0;
}

TEST_F(Events, AProcessThatDiesWithTheLockBlocksNobody)
{
    if (!HasRobustMutexes())
        GTEST_SKIP() << "this system has no robust mutexes";
    EXPECT_EQ(CountAfterReferring(), 0);
    for (int i = 0; i < 20; ++i) {
        TryDelete(L"E");
        ChildProcess child([] {
            for (;;) { // nearly always within the lock
                TryCreate(L"E", 1);
                TryDelete(L"E");
            }
            return true;
        });
        EXPECT_TRUE(WaitUntil([] { return GetReferenceCount(L"E") >= 0; }));
        usleep(300); // let it get at the lock again, which this process has just held
        child.Kill();
        child.Wait();
        TryDelete(L"E");
        EXPECT_TRUE(TryCreate(L"E", 1));
    }
    EXPECT_EQ(CountAfterReferring(), 0) << "the lock no longer keeps others out";
}
