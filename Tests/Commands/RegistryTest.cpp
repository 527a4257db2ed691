#include "Commands/EmbeddedResource.h"
#include "DllRegistryUtils.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryFolder.h"

#include <cerrno>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <memory>

namespace {
using Factory = CommandBase* (*)();

/// A function of a plug-in file, found as the host finds it. The file stays loaded.
template <typename Function>
Function* Find(const char* symbol, const std::string& file = PLUGIN_FILE)
{
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(library, nullptr) << dlerror();
    void* const address = dlsym(library, symbol);
    EXPECT_NE(address, nullptr) << symbol;
    return reinterpret_cast<Function*>(address);
}

bool TryGetTest(const std::string& file, int index, AutomaticTestEntry& entry)
{
    return Find<bool(int, AutomaticTestEntry&)>("_Z34DllRegistryTryGetNextAutomaticTestiR18AutomaticTestEntry", file)(
        index, entry);
}

/// "name id" of every command selected, and the names of the tests, each followed by a blank.
std::string GetEntries(const std::string& file = PLUGIN_FILE)
{
    std::string text;
    const auto getNextCommand = Find<Factory(unsigned int)>("_Z25DllRegistryGetNextCommandj", file);
    for (unsigned int index = 0; const Factory factory = getNextCommand(index); ++index) {
        const std::unique_ptr<CommandBase> command(factory());
        text += command->GetName().ToUtf8() + " " + std::to_string(command->GetCommandId()) + " ";
    }
    AutomaticTestEntry entry;
    for (int index = 0; TryGetTest(file, index, entry); ++index)
        text += entry.name.ToUtf8() + " ";
    return text;
}

/// What is offered after the selection.
std::string Select(const std::string& path, const std::string& file = PLUGIN_FILE)
{
    EXPECT_EQ(Find<int(const char*)>("_Z20DllRegistrySelectDllPKc", file)(path.c_str()), 0) << path;
    return GetEntries(file);
}

constexpr const char* allEntries_lc = "Assert 9015 Calc 1043 If 1042 Set 1045 While 1064 ExpressionEvaluator ";
} // namespace

TEST(RegistryTest, OffersEverythingBeforeASelection)
{
    // a copy, which this process has not loaded before
    const TemporaryFolder folder;
    const std::string copy = folder.Path("RegistryTestCopy.dll");
    std::filesystem::copy_file(PLUGIN_FILE, copy);
    EXPECT_EQ(GetEntries(copy), allEntries_lc);
    EXPECT_EQ(Select(PLUGIN_FILE, copy), "");
    EXPECT_EQ(Select("RegistryTestCopy.dll", copy), allEntries_lc);
}

TEST(RegistryTest, SelectsByFileName)
{
    for (const char* other : {"ExpressionEvaluator.dll.old", "expressionevaluator.dll", "ExpressionEvaluator.dll/"}) {
        EXPECT_EQ(Select(other), "") << other;
        for (const char* own : {PLUGIN_FILE, "/elsewhere/ExpressionEvaluator.dll", "ExpressionEvaluator.dll"})
            EXPECT_EQ(Select(own), allEntries_lc) << own;
    }
}

TEST(RegistryTest, SelectsTestsByTheBareName)
{
    const auto select = Find<void(const std::string&)>(
        "_Z28DllRegistrySelectDllForTestsRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
    AutomaticTestEntry entry(L"mine", L"", 7, nullptr);
    select("a/ExpressionEvaluator.dll");
    EXPECT_FALSE(TryGetTest(PLUGIN_FILE, 0, entry));
    select("ExpressionEvaluator.dll");
    EXPECT_FALSE(TryGetTest(PLUGIN_FILE, -1, entry));
    EXPECT_FALSE(TryGetTest(PLUGIN_FILE, 1, entry));
    EXPECT_EQ(entry.name, L"mine");
    EXPECT_TRUE(TryGetTest(PLUGIN_FILE, 0, entry));
    EXPECT_EQ(entry.name, L"ExpressionEvaluator");
    EXPECT_EQ(entry.title, L"Expression evaluator");
    EXPECT_EQ(entry.kind, 1u);
}

TEST(RegistryTest, ReportsOnceThatAFileNameCouldNotBeFound)
{
    EXPECT_EQ(GetDllName(reinterpret_cast<void*>(&GetDllFileName)),
        std::filesystem::read_symlink("/proc/self/exe").filename());
    ChildProcess process([] { // a registration cannot be taken back
        const auto nowhere = reinterpret_cast<Factory>(16);
        errno = ENOENT;
        const AddToCommandVector failing(nowhere);
        errno = 0;
        EXPECT_EQ(DllRegistrySelectDll("no such file"), ENOENT);
        EXPECT_EQ(DllRegistryGetNextCommand(0), nullptr);
        EXPECT_EQ(DllRegistrySelectDll("somewhere/"), 0); // the empty name is that of the failed look-up
        EXPECT_EQ(DllRegistryGetNextCommand(0), nowhere);
        EXPECT_EQ(DllRegistryGetNextCommand(1), nullptr);
        return !testing::Test::HasFailure();
    });
    EXPECT_TRUE(process.Wait());
}

TEST(RegistryTest, FactoriesAreExported)
{
    for (const char* symbol : {"_Z26CreateCommandAssertCommandv", "_Z17CreateCommandCalcv", "_Z15CreateCommandIfv",
             "_Z23CreateCommandSetCommandv", "_Z18CreateCommandWhilev"}) {
        const std::unique_ptr<CommandBase> command(Find<CommandBase*()>(symbol)());
        EXPECT_STREQ(command->GetSourceCodeTimestamp(), "Fri Sep  8 16:51:25 2023") << symbol;
        EXPECT_EQ(command->GetFlags(), 0xC0000040u) << symbol;
    }
}

TEST(RegistryTest, TheVersionStandsInASectionOfTheFile)
{
    std::string text;
    for (EmbeddedResource lines(PLUGIN_FILE, L"version"); !lines.EndOfFile();)
        text += lines.ReadLine().ToUtf8() + "\n";
    EXPECT_EQ(text,
        "Version: 6.0.6.5480\nProductName: OrvaneX9\nFirmwareType: E168\n"
        "FileName: ExpressionEvaluator.dll\nPurpose: Firmware\nTimestamp: 20240815 16:24:08\n\n");
}
