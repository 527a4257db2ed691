#include "EETokenMap.h"
#include "EETokenStack.h"
#include "EvaluatorLog.h"
#include "Services/ObjectCounters.h"
#include "Services/System.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryFolder.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <gtest/gtest.h>

namespace {
std::string PopAll(EETokenStack& stack)
{
    std::string texts;
    while (!stack.IsEmpty())
        texts += stack.Pop().ToString().ToUtf8() + " ";
    return texts;
}
} // namespace

TEST(StackTest, PushAddsOnTopAndPutAtTheBottom)
{
    EEToken a = Operand(L"a");
    EEToken b = Operand(L"b");
    EEToken c = Operand(L"c");
    EETokenStack stack;
    stack.Put(a);
    stack.Put(&b);
    EXPECT_EQ(PopAll(stack), "a b ");
    stack.Push(a);
    stack.Push(&b);
    EXPECT_EQ(PopAll(stack), "b a ");
    stack.Put(a);
    stack.Push(b);
    stack.Put(c);
    EXPECT_EQ(stack.Count(), 3);
    EXPECT_EQ(stack.Peek().ToString(), L"b");
    EXPECT_EQ(stack.GetTail().ToString(), L"c");
    stack.Clear();
    EXPECT_EQ(stack.Count(), 0);
    stack.Put(c);
    EXPECT_EQ(PopAll(stack), "c ");
}

TEST(StackTest, HoldsCopies)
{
    EEToken token = Operand(L"as it was put");
    EETokenStack stack;
    for (int i = 0; i < 3; ++i)
        stack.Put(token);
    token.SetValue(L"changed");
    const EEToken& popped = stack.Pop();
    EETokenStack copy(&stack);
    stack.Peek().SetValue(L"changed");
    EXPECT_EQ(PopAll(copy), "as it was put as it was put ");
    EXPECT_EQ(popped.ToString(), L"as it was put");
    EXPECT_EQ(&stack.Pop(), &popped); // the one slot of that stack
    EXPECT_EQ(popped.ToString(), L"changed");
}

TEST(StackTest, AnEmptyStackHasNothingToTake)
{
    EETokenStack stack;
    EXPECT_EQ(ThrownBy([&] { stack.Pop(); }), "9 Stack empty @0");
    EXPECT_EQ(ThrownBy([&] { stack.Peek(); }), "exit code 0:1:22");
    EXPECT_EQ(ThrownBy([&] { stack.GetTail(); }), "exit code 0:1:22");
    EXPECT_EQ(stack.ToString(true) + stack.GetDumpString(), L"");
}

TEST(StackTest, TextsOfTheWholeStack)
{
    EEToken error;
    error.SetException(4, L"bad");
    const EEToken tokens[] = {Operand(1.0), Operand(L"t"), Operand(true), EEToken(TT_OPERAND, L""), error,
        EEToken(TT_BINARYOP, L"<>"), EEToken(TT_UNARYOP, L"\u00B1"), EEToken(TT_PRMLIST, L"("),
        EEToken(TT_FUNCOP, L"abs")};
    EETokenStack stack;
    for (const EEToken& token : tokens)
        stack.Put(token);
    EXPECT_EQ(stack.ToString(false).ToUtf8(), "1 t TRUE #NA1 bad <> \u00B1 ( abs ");
    EXPECT_EQ(stack.ToString(true).ToUtf8(), "vn1 vst vbTRUE vu#NA1 v#bad b<> u\u00B1 ( abs ");
    while (stack.Count() > 2)
        stack.Pop();
    EXPECT_EQ(stack.GetDumpString().ToUtf8(),
        "Type: TT_PRMLIST, DataType: DT_NONE, (\nType: TT_FUNCOP, DataType: DT_NONE, abs\n");
}

TEST(StackTest, OperationsAreLoggedWhileTheLogIsOn)
{
    const TemporaryFolder folder;
    ChildProcess process([&] {
        System::Start(folder.GetPath(), SOURCE_DIR "/Shell/Profile");
        EEToken number = Operand(1.0);
        EEToken text = Operand(L"%d");
        EETokenStack stack;
        eeLog_gb.SetEnabled(true);
        stack.Put(number);
        stack.Push(text);
        stack.Pop();
        eeLog_gb.SetEnabled(false);
        stack.Pop();
        return true;
    });
    EXPECT_TRUE(process.Wait());
    EXPECT_EQ(folder.Read("EELog.txt"),
        "Put: Type: TT_OPERAND, DataType: DT_NUM, Value: 1\n"
        "Push: Type: TT_OPERAND, DataType: DT_STR, Value: %d\n"
        "Pop: Type: TT_OPERAND, DataType: DT_STR, Value: %d\n");
}

TEST(MapTest, FindsVariablesInAnyCase)
{
    EETokenMap map(33);
    EEToken token = Operand(L"text");
    map.SetVariable(L"Token", token);
    map.SetVariable(L"pointer", &token);
    map.SetVariable(L"number", 1.0);
    map.SetVariable(L"NUMBER", 1.5);
    map.SetVariable(L"boolean", true);
    map.SetVariable(L"digits", L"12");
    token.SetValue(L"changed");
    const auto find = [&](const wchar_t* name) {
        const EEToken* found = map.GetVariable(name);
        return WString::Format(L"%d %s", found->GetDataType(), found->ToString()).ToUtf8();
    };
    EXPECT_EQ(find(L"tOKEN"), "4 text");
    EXPECT_EQ(find(L"pointer"), "4 text");
    EXPECT_EQ(find(L"number"), "1 1.5");
    EXPECT_EQ(find(L"boolean"), "2 TRUE");
    EXPECT_EQ(find(L"digits"), "4 12");
    EXPECT_EQ(find(L""), "0 #NA");
    map.Clear();
    EXPECT_EQ(find(L"number"), "0 #NA");
}

TEST(MapTest, TextOfAVariableOrADefault)
{
    EETokenMap map(33);
    map.SetVariable(L"x", 0.25);
    WString text;
    EXPECT_TRUE(map.GetVariable(L"X", text, L"default"));
    EXPECT_EQ(text, L"0.25");
    EXPECT_FALSE(map.GetVariable(L"y", text, L"default"));
    EXPECT_EQ(text, L"default");
    EXPECT_FALSE(map.GetVariable(L"y", text, nullptr));
    EXPECT_EQ(text, L"#NA");
}

TEST(MapTest, AStoredErrorLosesItsCodeAndMark)
{
    EETokenMap map(33);
    EEToken error;
    error.SetException(133, L"Divide by zero");
    error.SetMissingVariable(L"kaka");
    error.SetPosition(4);
    map.SetVariable(L"x", error);
    EXPECT_EQ(ThrownBy([&] { map.GetVariable(L"x")->RethrowError(); }), "0 kaka @4");
    EXPECT_EQ(ThrownBy([&] { error.RethrowError(); }), "missing kaka: 48 Missing variable: kaka @4");
}

TEST(MapTest, AddedVariablesAreSharedAndFreedOnce)
{
    const int tokensBefore = GetDebugObjectCountExpressionEvaluator_EEToken();
    const int mapsBefore = GetDebugObjectCountExpressionEvaluator_CTokenMap();
    {
        EETokenMap target(33);
        target.SetVariable(L"both", L"of the target");
        {
            EETokenMap source(5);
            source.SetVariable(L"Both", L"of the source");
            target.AddVariables(source);
            EXPECT_EQ(target.GetVariable(L"both"), source.GetVariable(L"both"));
            EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_CTokenMap(), mapsBefore + 2);
            source.SetVariable(L"both", L"changed");
        }
        target.AddVariables(target);
        EXPECT_EQ(target.Begin().GetKey().ToLowerCase(), L"both");
        EXPECT_EQ(target.GetVariable(L"both")->ToString(), L"of the source");
    }
    EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_EEToken(), tokensBefore);
    EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_CTokenMap(), mapsBefore);
}

TEST(MapTest, CountersAreRegisteredInTheirOrder)
{
    std::string names;
    for (const DebugObjectCount& counter : GetDebugObjectCounts()) {
        if (counter.read == GetDebugObjectCountExpressionEvaluator_EEToken ||
            counter.read == GetDebugObjectCountExpressionEvaluator_CTokenMap)
            names += WString(counter.name).ToUtf8() + " ";
    }
    EXPECT_EQ(names, "ExpressionEvaluator_EEToken ExpressionEvaluator_CTokenMap ");
}
