#include "Containers/LinkedList.h"
#include "Containers/ObjectHashTable.h"

#include <gtest/gtest.h>

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

TEST(ObjectHashTable, FindsNamesInAnyCaseAndIsWalkedOnceThrough)
{
    const auto object = std::make_shared<Number>(2);
    {
        ObjectHashTable table(1);
        table.Insert(L"\u00C5", object);
        table.Insert(L"Alpha", std::make_shared<Number>(1));
        table.Insert(L"aLPHA", std::make_shared<Number>(3));
        EXPECT_FALSE(table.Add(L"ALPHA", std::make_shared<Number>(4)));
        EXPECT_EQ(ValueOf(table, L"alpha"), 3);
        EXPECT_EQ(ValueOf(table, L"Alph"), -1);
        EXPECT_EQ(ValueOf(table, L"\u00E5"), 2);
        for (int i = 0; i < 1000; ++i)
            EXPECT_TRUE(table.Add(WString::Format(L"name%d", i), std::make_shared<Number>(i)));
        EXPECT_EQ(table.Count(), 1002u);
        int sum = 0;
        for (ObjectHashTableIterator entry(table); !entry.IsAtEnd(); entry.MoveToNext())
            sum += ValueOf(table, entry.GetKey().View());
        EXPECT_EQ(sum, 999 * 1000 / 2 + 3 + 2);
    }
    EXPECT_EQ(object.use_count(), 1);
}

TEST(LinkedList, MayOutliveTheStorageOfItsThread)
{
    // Made first and so destroyed last, when the thread has given its spare nodes back; the leak checker sees what is
    // lost.
    std::thread([] {
        static thread_local LinkedList<double> outliving;
        LinkedList<double> other;
        for (int i = 0; i < 2000; ++i) {
            outliving.AddTail(i);
            other.AddTail(i);
        }
    }).join();
}
