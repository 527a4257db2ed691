#include "Instrument/OS9EventManager.h"
#include "Instrument/OS9EventTable.h"
#include "Services/FileDescriptor.h"
#include "Shell/Labsh.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/OwnEventTable.h"
#include "Text/Abort.h"

#include <gmock/gmock.h>

#include <climits>
#include <fstream>
#include <list>
#include <string>
#include <thread>

#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>

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
    /// The events E0, E1, ... that there is room for.
    static int MakeAll()
    {
        int count = 0;
        while (TryCreate(WString::Format(L"E%d", count), count))
            ++count;
        return count;
    }
    /// Refers to all of them and does so until the end of the process.
    static bool ReferToAll()
    {
        for (int i = 0; i < 256; ++i)
            GetOS9Event(WString::Format(L"E%d", i));
        return true;
    }
    static std::string DescribeUse()
    {
        return GetThrown([] { GetOS9Event(L"E"); });
    }
    static std::string FileError(const std::string& reason)
    {
        return "0:1:10 File error: " + ownTable_lc.file + ": " + reason;
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
    EXPECT_EQ(MakeAll(), 256);
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

TEST_F(Events, ProcessesThatAreKilledLeaveNoReferences)
{
    MakeAll();
    std::list<ChildProcess> children;
    for (int i = 0; i < 3; ++i)
        children.emplace_back([] { return ReferToAll() && pause() == 0; });
    ASSERT_TRUE(WaitUntil([] { return GetReferenceCount(L"E255") == 3; }));
    children.pop_front();
    EXPECT_EQ(GetReferenceCount(L"E255"), 2);
    DeleteAll();
    EXPECT_FALSE(TryCreate(L"New", 1)) << "those that live keep the room";
    children.clear();
    EXPECT_EQ(MakeAll(), 256);
    for (unsigned int i = 0; i < OS9EventTable::processCapacity; ++i)
        EXPECT_TRUE(ChildProcess(ReferToAll).Wait()) << "each takes the place of one that has ended";
    EXPECT_EQ(GetReferenceCount(L"E0"), 0);
}

TEST_F(Events, ALockThatIsNotGivenBackIsAnError)
{
    ASSERT_TRUE(TryCreate(L"E", 1));
    const FileDescriptor file(open(ownTable_lc.file.c_str(), O_RDWR));
    void* const memory = mmap(nullptr, sizeof(OS9EventTable), PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    ASSERT_NE(memory, MAP_FAILED);
    pthread_mutex_t& mutex = static_cast<OS9EventTable*>(memory)->mutex;
    pthread_mutex_lock(&mutex);

    const std::string message =
        FileError("its lock has not been given back for 2 s; end the process that holds it, or remove that file");
    Labsh labsh({"Calc GetEvent(\"E\")"});
    EXPECT_EQ(DescribeUse(), message);
    EXPECT_THAT(labsh.Finish(), testing::HasSubstr(message.substr(message.find("File"))));
    std::thread aborter([] {
        usleep(10'000);
        Abort::Request();
    });
    EXPECT_EQ(DescribeUse(), "0:1:4 Aborted");
    aborter.join();
    Abort::Clear();

    ownTable_lc.Remove();
    EXPECT_TRUE(TryCreate(L"E", 2)) << "a new table";
    pthread_mutex_unlock(&mutex);
    munmap(memory, sizeof(OS9EventTable));
}

TEST_F(Events, ATableThatCannotBeUsedIsAnErrorThatSaysWhy)
{
    const std::string damaged = FileError("it is damaged, or the table of events of another version; remove that file");
    const char* const file = ownTable_lc.file.c_str();
    OS9EventData* const event = TryCreate(L"E", 1) ? GetOS9Event(L"E") : nullptr;
    ASSERT_TRUE(event);
    ASSERT_EQ(truncate(file, 100), 0); // under the mapping
    EXPECT_EQ(DescribeUse(), damaged);
    event->ReleaseReference();
    ASSERT_EQ(truncate(file, 0), 0);
    EXPECT_TRUE(TryCreate(L"E", 2)) << "it is made again";

    ownTable_lc.Remove();
    std::ofstream(file) << std::string(sizeof(OS9EventTable), '\xFF');
    EXPECT_EQ(DescribeUse(), damaged);
    ownTable_lc.Remove();
    EXPECT_TRUE(TryCreate(L"E", 3));
    ASSERT_EQ(chmod(file, 0), 0);
    EXPECT_TRUE(RunUnprivileged([] {
        const std::string refused = geteuid() == getuid()
            ? FileError("Permission denied")
            : FileError("it is the table of events of the user 0; set LABSH_EVENTS to another name");
        EXPECT_EQ(DescribeUse(), refused);
        return DescribeUse() == refused;
    }));
}
