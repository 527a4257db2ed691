#include "EETokenMap.h"
#include "EETokenStack.h"
#include "EvaluatorLog.h"
#include "ExpressionEvaluator.h"
#include "Instrument/System.h"
#include "Support/ChildProcess.h"
#include "Support/Expressions.h"
#include "Support/TemporaryFolder.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <gtest/gtest.h>

TEST(StackTest, HoldsCopiesPushedOnTopAndPutAtTheBottom)
{
    EEToken token = Operand(L"b");
    EETokenStack stack;
    stack.Put(token);
    token.SetValue(L"a");
    stack.Push(&token);
    token.SetValue(L"c");
    stack.Put(&token);
    token.SetValue(L"changed");
    EXPECT_EQ(stack.ToString(false), L"a b c ");
    EXPECT_EQ(stack.Peek().ToString() + stack.GetTail().ToString(), L"ac");
    EXPECT_EQ(stack.Count(), 3);
    EETokenStack copy(&stack);
    const EEToken& popped = stack.Pop();
    stack.Peek().SetValue(L"changed");
    EXPECT_EQ(copy.ToString(false), L"a b c ");
    EXPECT_EQ(popped.ToString(), L"a");
    EXPECT_EQ(&stack.Pop(), &popped); // the one slot of that stack
    EXPECT_EQ(popped.ToString(), L"changed");
    stack.Clear();
    EXPECT_EQ(ThrownBy([&] { stack.Pop(); }), "9 Stack empty @0");
    EXPECT_EQ(ThrownBy([&] { stack.Peek(); }), "exit code 0:1:22");
    EXPECT_EQ(ThrownBy([&] { stack.GetTail(); }), "exit code 0:1:22");
    EXPECT_EQ(stack.ToString(true) + stack.GetDumpString(), L"");
}

TEST(StackTest, NumbersAreReadOffTheTop)
{
    EETokenStack stack;
    for (const EEToken& token : {Operand(1.5), Operand(L"one")})
        stack.Put(token);
    EXPECT_EQ(stack.PopNumber(), 1.5);
    EXPECT_EQ(ThrownBy([&] { stack.PopNumber(); }), "4 Type mismatch @7");
    EXPECT_EQ(stack.ToString(false), L"one ");
    stack.Clear();
    EXPECT_EQ(ThrownBy([&] { stack.PopNumber(); }), "9 Stack empty @0");
}

TEST(StackTest, TextsOfTheWholeStack)
{
    EEToken error;
    error.SetException(4, L"bad");
    EETokenStack stack;
    for (const EEToken& token :
        {Operand(1.0), Operand(L"t"), Operand(true), EEToken(TT_OPERAND, L""), error, EEToken(TT_BINARYOP, L"<>"),
            EEToken(TT_UNARYOP, L"\u00B1"), EEToken(TT_PRMLIST, L"("), EEToken(TT_FUNCOP, L"abs")})
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
        EEToken text = Operand(L"%d");
        EETokenStack stack;
        eeLog_gb.SetEnabled(true);
        stack.Put(text);
        stack.Push(text);
        stack.Pop();
        eeLog_gb.SetEnabled(false);
        stack.Pop();
        return true;
    });
    EXPECT_TRUE(process.Wait());
    const std::string dump = ": Type: TT_OPERAND, DataType: DT_STR, Value: %d\n";
    EXPECT_EQ(folder.Read("EELog.txt"), "Put" + dump + "Push" + dump + "Pop" + dump);
}

TEST(MapTest, FindsCopiesInAnyCase)
{
    EETokenMap map(33);
    EEToken token = Operand(L"text");
    map.SetVariable(L"Token", token);
    map.SetVariable(L"pointer", &token);
    map.SetVariable(L"number", 1.0);
    map.SetVariable(L"NUMBER", 1.5);
    map.SetVariable(L"boolean", true);
    map.SetVariable(L"digits", L"12");
    token.SetException(133, L"Divide by zero");
    token.SetMissingVariable(L"kaka");
    map.SetVariable(L"error", token);
    const auto find = [&](const wchar_t* name) {
        const EEToken* found = map.GetVariable(name);
        return WString::Format(L"%d %s; ", found->GetDataType(), found->ToString()).ToUtf8();
    };
    EXPECT_EQ(find(L"tOKEN") + find(L"pointer") + find(L"number") + find(L"boolean") + find(L"digits") + find(L""),
        "4 text; 4 text; 1 1.5; 2 TRUE; 4 12; 0 #NA; ");
    EXPECT_EQ(ThrownBy([&] { map.GetVariable(L"error")->RethrowError(); }), "0 kaka @7") << "without its code and mark";

    WString text;
    EXPECT_TRUE(map.GetVariable(L"Number", text, L"default") && text == L"1.5");
    EXPECT_TRUE(!map.GetVariable(L"y", text, L"default") && text == L"default");
    EXPECT_TRUE(!map.GetVariable(L"y", text, nullptr) && text == L"#NA");
    map.Clear();
    EXPECT_EQ(find(L"number"), "0 #NA; ");
}

// What is no value of the language is refused when it is compiled: a narrow text would be stored as TRUE.
template <typename Value>
concept Settable = requires(ExpressionEvaluator& evaluator, EETokenMap& map, EEToken& token, Value value)
{
    evaluator.SetVariable(L"x", value);
    map.SetVariable(L"x", value);
    token.SetValue(value);
};
template <typename Value>
concept SettableSomewhere = requires(ExpressionEvaluator& evaluator, Value value)
{
    evaluator.SetVariable(L"x", value);
}
|| requires(EETokenMap& map, Value value)
{
    map.SetVariable(L"x", value);
}
|| requires(EEToken& token, Value value)
{
    token.SetValue(value);
};
static_assert(Settable<const wchar_t*> && Settable<wchar_t*> && Settable<double> && Settable<bool>);
static_assert(!SettableSomewhere<const char*> && !SettableSomewhere<char*> && !SettableSomewhere<const char (&)[7]>);
static_assert(!SettableSomewhere<const char32_t*> && !SettableSomewhere<const void*>);

TEST(MapTest, NullPointersAreNaOrEmpty)
{
    EEToken* const none = nullptr;
    const wchar_t* const noText = nullptr;
    EETokenMap map(33);
    EXPECT_EQ(map.GetVariable(noText)->ToString(), L"#NA");
    map.SetVariable(L"token", none);
    map.SetVariable(L"text", noText);
    map.SetVariable(noText, 1.0);
    EXPECT_TRUE(map.GetVariable(L"token")->IsNa());
    EXPECT_EQ(map.GetVariable(L"text")->ToString(), L"");
    EXPECT_EQ(map.GetVariable(noText)->ToString(), L"1") << "the empty name";

    EEToken token = Operand(L"x");
    EXPECT_TRUE((token = none).IsNa() && token.GetErrorCode() == 0 && token.GetPosition() == 0);
    token.SetText(noText, 5);
    token.SetValue(noText);
    EXPECT_TRUE(token.IsValued() && token.GetText().IsEmpty());
    EXPECT_EQ(ThrownBy([] { throw ExpressionEvaluatorException(4, L"%t", nullptr, 5); }), "4 %t @5");

    EETokenStack stack(nullptr);
    stack.Push(none);
    stack.Put(none);
    EXPECT_EQ(stack.ToString(true), L"vu#NA vu#NA ");
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"x", noText);
    evaluator.ErrMsg(7, noText, noText);
    EXPECT_EQ(DescribeError(evaluator), "7 0:505:7 @0");
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
        EXPECT_EQ(target.GetVariable(L"both")->ToString(), L"of the source");
    }
    EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_EEToken(), tokensBefore);
    EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_CTokenMap(), mapsBefore);
}
