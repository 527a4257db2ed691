// The constructors through which the plug-in registers what it has are replaced by ones that keep a record: the dynamic
// linker binds the plug-in to those of the program that loads it, which exports them.

#include "DllRegistryUtils.h"
#include "EvaluatorLog.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Services/ObjectCounters.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <memory>

static std::string& Record()
{
    static std::string record;
    return record;
}

static void Add(const char* kind, const WString& name)
{
    Record() += kind + (" " + name.ToUtf8()) + "\n";
}

AddToCommandVector::AddToCommandVector(CommandBase* (*factory)())
{
    Add("command", std::unique_ptr<CommandBase>(factory())->GetName());
}

AddToDebugObjectCountVector::AddToDebugObjectCountVector(const wchar_t* name, int (*)())
{
    Add("counter", name);
}

LogFile::LogFile(const wchar_t* firstText, const wchar_t* name, unsigned int sizeLimit)
    : firstText(firstText), name(name), sizeLimit(sizeLimit)
{
    Add("log", name);
}

LogFile::~LogFile() = default;

EEFunctionTable::EEFunctionTable() : functions(1)
{
    Add("table of", L"functions");
}

AddToAutomaticTestVector::AddToAutomaticTestVector(
    const wchar_t* name, const wchar_t*, unsigned int, void (*)(TestCommand&))
{
    Add("test", name);
}

TEST(RegistrationTest, TakesPlaceInOrder)
{
    Record().clear(); // of what the host has made for itself
    ASSERT_TRUE(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL)) << dlerror();
    EXPECT_EQ(Record(),
        "command Assert\n"
        "command Calc\n"
        "command If\n"
        "command Set\n"
        "command While\n"
        "counter ExpressionEvaluator_EEToken\n"
        "counter ExpressionEvaluator_CTokenMap\n"
        "log EELog\n"
        "counter ExpressionEvaluator_CExprFn\n"
        "table of functions\n"
        "test ExpressionEvaluator\n");
}
