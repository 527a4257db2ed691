#include "Containers/LinkedList.h"
#include "Containers/ObjectHashTable.h"
#include "Services/ObjectCounters.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

struct Number : Object
{
    explicit Number(int value) : value(value) {}
    int value;
};

static int ValueOf(const ObjectHashTable& table, std::wstring_view name)
{
    const auto* number = dynamic_cast<Number*>(table.GetObjectOrNull(name));
    return number ? number->value : -1;
}

TEST(ObjectHashTable, ComparesNamesInAnyCase)
{
    ObjectHashTable table(1);
    table.Insert(L"Alpha", std::make_shared<Number>(1));
    table.Insert(L"\u00C5", std::make_shared<Number>(2));
    EXPECT_EQ(ValueOf(table, L"ALPHA"), 1);
    EXPECT_EQ(ValueOf(table, L"\u00E5"), 2);
    EXPECT_EQ(ValueOf(table, L"Alph"), -1);

    table.Insert(L"aLPHA", std::make_shared<Number>(3));
    EXPECT_FALSE(table.Add(L"ALPHA", std::make_shared<Number>(4)));
    EXPECT_TRUE(table.Add(L"beta", std::make_shared<Number>(5)));
    EXPECT_EQ(ValueOf(table, L"alpha"), 3);
    EXPECT_EQ(table.Count(), 3u);

    WStringArray names;
    table.GetKeys(names);
    names.Sort();
    ASSERT_EQ(names.Count(), 3u);
    EXPECT_EQ(names[0], L"Alpha"); // as first written
}

TEST(ObjectHashTable, SharesItsObjects)
{
    const auto object = std::make_shared<Number>(6);
    ObjectHashTable second(8);
    {
        ObjectHashTable first(8);
        first.Insert(L"x", object);
        for (ObjectHashTableIterator entry(first); !entry.IsAtEnd(); entry.MoveToNext())
            second.Insert(entry.GetKey(), entry.GetObject());
        EXPECT_EQ(first.GetObjectOrNull(L"x"), second.GetObjectOrNull(L"x"));
    }
    EXPECT_EQ(ValueOf(second, L"x"), 6);
    second.Clear();
    EXPECT_EQ(object.use_count(), 1);
}

TEST(ObjectHashTable, IsWalkedOnceThrough)
{
    ObjectHashTable table(3);
    for (int i = 0; i < 1000; ++i)
        table.Insert(WString::Format(L"name%d", i), std::make_shared<Number>(i));
    int count = 0;
    int sum = 0;
    for (ObjectHashTableIterator entry(table); !entry.IsAtEnd(); entry.MoveToNext(), ++count)
        sum += ValueOf(table, entry.GetKey().View());
    EXPECT_EQ(count, 1000);
    EXPECT_EQ(sum, 999 * 1000 / 2);
}

template <typename T>
static std::string Walk(const LinkedList<T>& list)
{
    std::string forth;
    std::string back;
    for (auto* node = list.GetHead(); node; node = node->next)
        forth += node->value;
    for (auto* node = list.GetTail(); node; node = node->previous)
        back += node->value;
    EXPECT_EQ(forth, std::string(back.rbegin(), back.rend()));
    EXPECT_EQ(forth.size(), list.Count());
    return forth;
}

TEST(LinkedList, KeepsItsOrder)
{
    LinkedList<char> list;
    list.AddTail('b');
    list.AddHead('a');
    list.AddTail('c');
    EXPECT_EQ(Walk(list), "abc");
    list.RemoveHead();
    EXPECT_EQ(Walk(list), "bc");
    list.RemoveHead();
    list.RemoveHead();
    EXPECT_EQ(Walk(list), "");
    list.AddHead('d');
    EXPECT_EQ(Walk(list), "d");
}

/// Its copy fails when it is told so.
struct Reluctant
{
    bool fails = false;
    Reluctant() = default;
    Reluctant(const Reluctant& other) : fails(other.fails)
    {
        if (fails)
            throw std::runtime_error("no copy");
    }
};

TEST(LinkedList, StaysAsItIsWhenACopyFails)
{
    LinkedList<Reluctant> list;
    Reluctant value;
    list.AddTail(value);
    value.fails = true;
    EXPECT_THROW(list.AddTail(value), std::runtime_error);
    EXPECT_THROW(list.AddHead(value), std::runtime_error);
    EXPECT_EQ(list.Count(), 1u);
    EXPECT_EQ(list.GetHead(), list.GetTail());
}

TEST(LinkedList, MayOutliveTheStorageOfItsThread)
{
    // Made first and so destroyed last, when the thread has given its spare nodes back; the leak checker sees what is
    // lost.
    std::thread([] {
        static thread_local LinkedList<double> outliving;
        for (int i = 0; i < 2000; ++i)
            outliving.AddTail(i);
        LinkedList<double> other;
        for (int i = 0; i < 2000; ++i)
            other.AddTail(i);
    }).join();
}

static int CountSeven()
{
    return 7;
}

static AddToDebugObjectCountVector counter_lc(L"ContainersTest", CountSeven);

TEST(ObjectCounters, AreReadByName)
{
    int found = 0;
    for (const DebugObjectCount& counter : GetDebugObjectCounts())
        if (std::wstring_view(counter.name) == L"ContainersTest")
            found += counter.read();
    EXPECT_EQ(found, 7);
}
