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

class Events : public testing::Test
{
protected:
    void SetUp() override { DeleteAll(); }
    void TearDown() override { DeleteAll(); }

    static WStringArray GetNames()
    {
        WStringArray names;
        OS9EventManager::GetNames(names);
        return names;
    }
    static void DeleteAll()
    {
        for (const WString& name : GetNames())
            OS9EventManager::TryDelete(name);
    }
    /// The event's value, -1 when there is none.
    static int Read(const WString& name)
    {
        OS9EventData* event = OS9EventManager::GetOS9Event(name);
        if (!event)
            return -1;
        const int value = event->Read();
        event->ReleaseReference();
        return value;
    }
};

TEST_F(Events, AreNamedValues)
{
    EXPECT_TRUE(OS9EventManager::TryCreate(L"Tür", INT_MIN));
    EXPECT_TRUE(OS9EventManager::TryCreate(L"tür", 2));
    EXPECT_FALSE(OS9EventManager::TryCreate(L"Tür", 3));
    EXPECT_TRUE(OS9EventManager::TryCreate(WString(63, L'a'), 4));
    EXPECT_EQ(Join(GetNames()), std::string(63, 'a') + "\nTür\ntür");
    EXPECT_EQ(Read(L"Tür"), INT_MIN);
    EXPECT_EQ(Read(L"tür"), 2);
    EXPECT_EQ(Read(WString(63, L'a')), 4);
    EXPECT_TRUE(OS9EventManager::TryDelete(L"Tür"));
    EXPECT_FALSE(OS9EventManager::TryDelete(L"Tür"));
    EXPECT_EQ(Read(L"Tür"), -1);
    EXPECT_EQ(Read(L"tür"), 2);

    for (const WString& name : {WString(), WString(64, L'a'), WString(L"a\0b", 3)})
        EXPECT_FALSE(OS9EventManager::TryCreate(name, 1)) << name.ToUtf8();
}

TEST_F(Events, DeletedOnesServeUntilTheLastReferenceIsGivenBack)
{
    EXPECT_EQ(OS9EventManager::GetReferenceCount(L"E"), -1);
    ASSERT_TRUE(OS9EventManager::TryCreate(L"E", 1));
    OS9EventData* first = OS9EventManager::GetOS9Event(L"E");
    OS9EventData* second = OS9EventManager::GetOS9Event(L"E");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(OS9EventManager::GetReferenceCount(L"E"), 2);
    EXPECT_TRUE(OS9EventManager::TryDelete(L"E"));
    EXPECT_EQ(OS9EventManager::GetReferenceCount(L"E"), -1);

    ASSERT_TRUE(OS9EventManager::TryCreate(L"E", 10));
    first->Write(2);
    EXPECT_EQ(second->Read(), 2);
    EXPECT_EQ(Read(L"E"), 10) << "the new event is another one";
    first->ReleaseReference();
    EXPECT_EQ(second->Read(), 2);
    second->ReleaseReference();
    EXPECT_EQ(OS9EventManager::GetReferenceCount(L"E"), 0);
}

TEST_F(Events, ThereIsRoomFor256)
{
    int count = 0;
    while (OS9EventManager::TryCreate(WString::Format(L"E%d", count), count))
        ++count;
    EXPECT_EQ(count, 256);
    EXPECT_EQ(Read(L"E255"), 255);
    OS9EventData* event = OS9EventManager::GetOS9Event(L"E7");
    OS9EventManager::TryDelete(L"E7");
    EXPECT_FALSE(OS9EventManager::TryCreate(L"New", 1)) << "the reference keeps the room";
    event->ReleaseReference();
    EXPECT_TRUE(OS9EventManager::TryCreate(L"New", 1));
}

TEST_F(Events, ProcessesShareThem)
{
    ASSERT_TRUE(OS9EventManager::TryCreate(L"E", 1));
    OS9EventData* event = OS9EventManager::GetOS9Event(L"E");
    EXPECT_TRUE(ChildProcess([] {
        OS9EventData* same = OS9EventManager::GetOS9Event(L"E");
        const bool isSame = same->Read() == 1 && OS9EventManager::GetReferenceCount(L"E") == 2;
        same->Write(73);
        same->ReleaseReference();
        return isSame && OS9EventManager::TryCreate(L"Child", 5) && OS9EventManager::TryDelete(L"E");
    }).Wait());
    EXPECT_EQ(event->Read(), 73);
    EXPECT_EQ(Join(GetNames()), "Child");
    event->ReleaseReference();
}

/// Takes references and gives them back.
static bool ReferOften()
{
    for (int i = 0; i < 20000; ++i) {
        OS9EventData* event = OS9EventManager::GetOS9Event(L"E");
        if (!event)
            return false;
        event->ReleaseReference();
    }
    return true;
}

/// The references left over when two threads and another process have taken and given back many at once.
static int CountAfterReferring()
{
    OS9EventManager::TryCreate(L"E", 1);
    ChildProcess child(ReferOften);
    std::thread thread(ReferOften);
    const bool done = ReferOften();
    thread.join();
    return child.Wait() && done ? OS9EventManager::GetReferenceCount(L"E") : -1;
}

TEST_F(Events, ReferencesAreCountedOverThreadsAndProcesses)
{
    EXPECT_EQ(CountAfterReferring(), 0);
}

TEST_F(Events, AProcessThatDiesWithTheLockBlocksNobody)
{
    for (int i = 0; i < 20; ++i) {
        ChildProcess child([] {
            for (;;) { // nearly always within the lock
                OS9EventManager::TryCreate(L"E", 1);
                OS9EventManager::TryDelete(L"E");
            }
            return true;
        });
        while (OS9EventManager::GetReferenceCount(L"E") < 0)
            usleep(100);
        usleep(300); // let it get at the lock again, which this process has just held
        child.Kill();
        child.Wait();
        OS9EventManager::TryDelete(L"E");
        EXPECT_TRUE(OS9EventManager::TryCreate(L"E", 1));
        EXPECT_TRUE(OS9EventManager::TryDelete(L"E"));
    }
    EXPECT_EQ(CountAfterReferring(), 0) << "the lock no longer keeps others out";
}

TEST_F(Events, AreSharedWithAProcessThatStartedByItself)
{
    ASSERT_TRUE(OS9EventManager::TryCreate(L"Shared", 7));
    EXPECT_EQ(Labsh({"Event Shared"}).Finish(), "Shared=7\nexit 0");
    EXPECT_EQ(Labsh({"Event Shared=8"}).Finish(), "exit 0");
    EXPECT_EQ(Read(L"Shared"), 8);
}
