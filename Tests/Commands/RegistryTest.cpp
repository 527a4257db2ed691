#include "Commands/EmbeddedResource.h"
#include "DllRegistryUtils.h"

#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {
using Factory = CommandBase* (*)();

/// The registry of a plug-in file, found as the host finds it.
class Registry
{
public:
    explicit Registry(const std::string& file) : library(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(library, nullptr) << dlerror();
        getNextCommand = Find<Factory(unsigned int)>("_Z25DllRegistryGetNextCommandj");
        selectDll = Find<int(const char*)>("_Z20DllRegistrySelectDllPKc");
        selectDllForTests = Find<void(const std::string&)>(
            "_Z28DllRegistrySelectDllForTestsRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
        tryGetNextAutomaticTest =
            Find<bool(int, AutomaticTestEntry&)>("_Z34DllRegistryTryGetNextAutomaticTestiR18AutomaticTestEntry");
    }

    /// "name id" of every command selected, and the names of the tests, each followed by a blank.
    std::string GetEntries() const
    {
        std::string text;
        for (unsigned int index = 0; const Factory factory = getNextCommand(index); ++index) {
            const std::unique_ptr<CommandBase> command(factory());
            text += command->GetName().ToUtf8() + " " + std::to_string(command->GetCommandId()) + " ";
        }
        AutomaticTestEntry entry;
        for (int index = 0; tryGetNextAutomaticTest(index, entry); ++index)
            text += entry.name.ToUtf8() + " ";
        return text;
    }

    template <typename Function>
    Function* Find(const char* symbol) const
    {
        void* const address = dlsym(library, symbol);
        EXPECT_NE(address, nullptr) << symbol;
        return reinterpret_cast<Function*>(address);
    }

    Factory (*getNextCommand)(unsigned int);
    int (*selectDll)(const char*);
    void (*selectDllForTests)(const std::string&);
    bool (*tryGetNextAutomaticTest)(int, AutomaticTestEntry&);

private:
    void* const library; // stays loaded
};

constexpr const char* allEntries_lc = "Assert 9015 Calc 1043 If 1042 Set 1045 While 1064 ExpressionEvaluator ";
} // namespace

TEST(RegistryTest, OffersEverythingBeforeASelection)
{
    // a copy, which this process has not loaded before
    const std::string copy = testing::TempDir() + "RegistryTestCopy.dll";
    std::filesystem::copy_file(PLUGIN_FILE, copy, std::filesystem::copy_options::overwrite_existing);
    const Registry registry(copy);
    EXPECT_EQ(registry.GetEntries(), allEntries_lc);
    EXPECT_EQ(registry.selectDll(PLUGIN_FILE), 0);
    EXPECT_EQ(registry.GetEntries(), "");
    EXPECT_EQ(registry.selectDll("RegistryTestCopy.dll"), 0);
    EXPECT_EQ(registry.GetEntries(), allEntries_lc);
    std::filesystem::remove(copy);
}

TEST(RegistryTest, SelectsByFileName)
{
    const Registry registry(PLUGIN_FILE);
    const struct
    {
        const char* path;
        const char* entries;
    } cases[] = {
        {PLUGIN_FILE, allEntries_lc},
        {"ExpressionEvaluator.dll.old", ""},
        {"/elsewhere/ExpressionEvaluator.dll", allEntries_lc},
        {"expressionevaluator.dll", ""},
        {"ExpressionEvaluator.dll", allEntries_lc},
        {"ExpressionEvaluator.dll/", ""},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(registry.selectDll(row.path), 0) << row.path;
        EXPECT_EQ(registry.GetEntries(), row.entries) << row.path;
    }
}

TEST(RegistryTest, SelectsTestsByTheBareName)
{
    const Registry registry(PLUGIN_FILE);
    AutomaticTestEntry entry(L"mine", L"", 7, nullptr);
    registry.selectDllForTests("a/ExpressionEvaluator.dll");
    EXPECT_FALSE(registry.tryGetNextAutomaticTest(0, entry));
    registry.selectDllForTests("ExpressionEvaluator.dll");
    EXPECT_FALSE(registry.tryGetNextAutomaticTest(-1, entry));
    EXPECT_FALSE(registry.tryGetNextAutomaticTest(1, entry));
    EXPECT_EQ(entry.name, L"mine");
    EXPECT_TRUE(registry.tryGetNextAutomaticTest(0, entry));
    EXPECT_EQ(entry.name, L"ExpressionEvaluator");
    EXPECT_EQ(entry.title, L"Expression evaluator");
    EXPECT_EQ(entry.kind, 1u);
}

TEST(RegistryTest, ReportsOnceThatAFileNameCouldNotBeFound)
{
    const auto nowhere = reinterpret_cast<Factory>(16);
    errno = ENOENT;
    const AddToCommandVector failing(nowhere);
    errno = 0;
    EXPECT_EQ(GetDllName(reinterpret_cast<void*>(&GetDllFileName)),
        std::filesystem::read_symlink("/proc/self/exe").filename());

    EXPECT_EQ(DllRegistrySelectDll("no such file"), ENOENT);
    EXPECT_EQ(DllRegistryGetNextCommand(0), nullptr);
    EXPECT_EQ(DllRegistrySelectDll("somewhere/"), 0); // the empty name is that of the failed look-up
    EXPECT_EQ(DllRegistryGetNextCommand(0), nowhere);
    EXPECT_EQ(DllRegistryGetNextCommand(1), nullptr);
}

TEST(RegistryTest, FactoriesAreExported)
{
    const Registry registry(PLUGIN_FILE);
    for (const char* symbol : {"_Z26CreateCommandAssertCommandv", "_Z17CreateCommandCalcv", "_Z15CreateCommandIfv",
             "_Z23CreateCommandSetCommandv", "_Z18CreateCommandWhilev"}) {
        const std::unique_ptr<CommandBase> command(registry.Find<CommandBase*()>(symbol)());
        EXPECT_STREQ(command->GetSourceCodeTimestamp(), "Fri Sep  8 16:51:25 2023") << symbol;
        EXPECT_EQ(command->GetFlags(), 0xC0000040u) << symbol;
    }
}

TEST(RegistryTest, TextsStandInSectionsOfTheFile)
{
    std::string text;
    ASSERT_TRUE(EmbeddedResource::TryReadSection(PLUGIN_FILE, ".ov.version", text));
    EXPECT_EQ(text,
        "Version: 6.0.6.5480\n"
        "ProductName: OrvaneX9\n"
        "FirmwareType: E168\n"
        "FileName: ExpressionEvaluator.dll\n"
        "Purpose: Firmware\n"
        "Timestamp: 20240815 16:24:08\n"
        "\n");
    EXPECT_EQ(text.size(), 143u);
    ASSERT_TRUE(EmbeddedResource::TryReadSection(PLUGIN_FILE, ".ov.HELP.TXT", text));
    EXPECT_EQ(text.size(), 1247u);
    ASSERT_TRUE(EmbeddedResource::TryReadSection(PLUGIN_FILE, ".ov.FUNCTIONS.TXT", text));
    EXPECT_EQ(text.size(), 16042u);
}
