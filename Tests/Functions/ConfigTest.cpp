#include "NumberFormat.h"
#include "Services/System.h"
#include "Support/Expressions.h"

namespace {
class ConfigFunctions : public testing::Test
{
protected:
    ConfigFunctions()
    {
        Set(L"IntValue", L"12");
        Set(L"Large", L"4000000000");
        Set(L"Huge", L"1e20");
        Set(L"Negative", L"-7");
        Set(L"Fraction", L"1.5");
        Set(L"Word", L"abc");
        Set(L"Truth", L"True");
    }

    ~ConfigFunctions() override
    {
        WStringArray keys;
        System::config.GetKeys(L"UnitTest", keys);
        for (const WString& key : keys)
            System::config.TryDelete(L"UnitTest", key);
    }

    static void Set(const wchar_t* key, const wchar_t* value) { System::config.SetString(L"UnitTest", key, value); }
};

/// Evaluates the call, and describes what the metadata then say of its key: type and default.
std::string Registered(const std::string& function, const std::string& key, const std::string& defaultValue)
{
    Outcome(function + R"(("UnitTest", ")" + key + "\", " + defaultValue + ")");
    ConfigMetaData::Item item;
    if (!System::config.GetMetaData().TryGet(L"UnitTest", WString::FromUtf8(key), item))
        return "nothing";
    static const char* const types[] = {"", "Int", "Str", "Dbl", "UInt", "", "Bool"};
    const WString value = item.type == ConfigDataType::Str ? item.defaultText : DoubleToString(item.defaultNumber);
    return types[static_cast<int>(item.type)] + (" " + value.ToUtf8());
}
} // namespace

TEST_F(ConfigFunctions, ReadExistingKeys)
{
    CheckExpressions({
        {R"(GetConfig("UnitTest", "IntValue"))", "12"},
        {R"(Config("unittest", "INTVALUE", "x"))", "12"},
        {R"(Config("UnitTest", "IntValue", true))", "12"},
        {R"(GetConfig("UnitTest", "Large"))", "4000000000"},
        {R"(GetConfig("UnitTest", "Huge"))", "1e20"},
        {R"(GetConfig("UnitTest", "Fraction", 1))", "1.5"},
        {R"(GetConfig("UnitTest", "Word"))", "'abc'"},
        {R"(GetConfig("UnitTest", "Truth"))", "'True'"},
        {R"(GetConfig("UnitTest", "Truth", false))", "TRUE"},
        {R"(GetConfigInt("UnitTest","IntValue",73))", "12"},
        {R"(GetConfigInt("UnitTest","IntValue"))", "12"},
        {R"(GetConfigUint("UnitTest","IntValue",73))", "12"},
        {R"(GetConfigUInt("UnitTest","Large"))", "4000000000"},
        {R"(GetConfigDbl("UnitTest","Fraction"))", "1.5"},
        {R"(GetConfigStr("UnitTest","IntValue"))", "'12'"},
        {R"(GetConfigBool("UnitTest","Truth"))", "TRUE"},
        {R"(IsError(GetConfig("UnitTest","IntValue")))", "FALSE"},
    });
}

TEST_F(ConfigFunctions, RefuseValuesOfAnotherType)
{
    CheckExpressions({
        {R"(GetConfigBool("UnitTest","IntValue",true))", "140 Cannot convert config value to requested type @14"},
        {R"(GetConfigInt("UnitTest","Word"))", "140 Cannot convert config value to requested type @13"},
        {R"(GetConfigInt("UnitTest","Large"))", "140 Cannot convert config value to requested type @13"},
        {R"(GetConfigUInt("UnitTest","Negative"))", "140 Cannot convert config value to requested type @14"},
        {R"(GetConfigDbl("UnitTest","Truth"))", "140 Cannot convert config value to requested type @13"},
        {R"(GetConfig("UnitTest","Word", 1))", "140 Cannot convert config value to requested type @10"},
        {R"(GetConfig("UnitTest","Word", false))", "140 Cannot convert config value to requested type @10"},
    });
}

TEST_F(ConfigFunctions, CheckArguments)
{
    CheckExpressions({
        {R"(1+GetConfig("UnitTest","None"))", "114 Config value not found @12"},
        {R"(GetConfigBool("UnitTest","None"))", "114 Config value not found @14"},
        {R"(Config("UnitTest"))", "113 GetConfig/Config requires 2 or 3 parameters @8"},
        {R"(GetConfig("S","K",1,2))", "113 GetConfig/Config requires 2 or 3 parameters @21"},
        {R"(GetConfigInt("UnitTest"))", "113 GetConfig<type>/Config<type> requires 2 or 3 parameters @14"},
        {R"(GetConfigStr("S","K","x",2))", "113 GetConfig<type>/Config<type> requires 2 or 3 parameters @26"},
        {R"(GetConfig(1,"K"))", "8 Type mismatch @11"},
        {R"(GetConfigDbl("S",true))", "8 Type mismatch @18"},
        {R"(GetConfig("UnitTest","IntValue",1/0))", "133 Divide by zero @35"},
    });
}

TEST_F(ConfigFunctions, DefaultsServeForMissingKeys)
{
    CheckExpressions({
        {R"(GetConfig("UnitTest","None",1.5))", "1.5"},
        {R"(GetConfig("UnitTest","None",4000000000))", "4000000000"},
        {R"(GetConfig("UnitTest","None","xyz1"))", "'xyz1'"},
        {R"(GetConfig("UnitTest","None",1>2))", "FALSE"},
        {R"(GetConfigInt("UnitTest","None",-7.9))", "-7"},
        {R"(GetConfigInt("UnitTest","None",1e300))", "2147483647"},
        {R"(GetConfigUInt("UnitTest","None",-7))", "0"},
        {R"(GetConfigDbl("UnitTest","None","0x10"))", "16"},
        {R"(GetConfigStr("UnitTest","None",""))", "''"},
        {R"(GetConfigBool("UnitTest","None",true))", "TRUE"},
        {R"(5/GetConfig("UnitTest","None",0))", "133 Divide by zero @12"},
    });
}

TEST_F(ConfigFunctions, DefaultsMustBeOfTheType)
{
    for (const std::string key : {"IntValue", "NewValue"})
        CheckExpressions({
            {R"(GetConfigInt("UnitTest",")" + key + "\",\"x\")", "4 Type mismatch @36"},
            {R"(GetConfigInt("UnitTest",")" + key + "\",true)", "143 Boolean is not a number @36"},
            {R"(GetConfigDbl("UnitTest",")" + key + "\",1/0)", "133 Divide by zero @38"},
            {R"(GetConfigStr("UnitTest",")" + key + "\",5)", "8 Type mismatch @36"},
            {R"(GetConfigBool("UnitTest",")" + key + "\",1)", "6 Type mismatch @37"},
        });
}

TEST_F(ConfigFunctions, DefaultsAreRegistered)
{
    for (const std::string key : {"IntValue", "NewValue"}) {
        EXPECT_EQ(Registered("GetConfig", key, "1.5"), "Dbl 1.5");
        EXPECT_EQ(Registered("GetConfig", key, "3"), "Int 3");
        EXPECT_EQ(Registered("GetConfig", key, "-2147483648"), "Int -2147483648");
        EXPECT_EQ(Registered("GetConfig", key, "-2147483649"), "Dbl -2147483649");
        EXPECT_EQ(Registered("GetConfig", key, "2147483648"), "UInt 2147483648");
        EXPECT_EQ(Registered("GetConfig", key, "4294967295"), "UInt 4294967295");
        EXPECT_EQ(Registered("GetConfig", key, "4294967296"), "Dbl 4294967296");
        EXPECT_EQ(Registered("GetConfig", key, "\"xyz1\""), "Str xyz1");
        EXPECT_EQ(Registered("Config", key, "true"), "Bool 1");
        EXPECT_EQ(Registered("GetConfigInt", key, "-7.9"), "Int -7");
        EXPECT_EQ(Registered("GetConfigUInt", key, "-7"), "UInt 0");
        EXPECT_EQ(Registered("GetConfigDbl", key, "\"0x10\""), "Dbl 16");
        EXPECT_EQ(Registered("GetConfigStr", key, "\"5\""), "Str 5");
        EXPECT_EQ(Registered("GetConfigBool", key, "false"), "Bool 0");
    }
    EXPECT_EQ(Registered("GetConfigInt", "Word", "8"), "Int 8"); // although the stored text is refused
    EXPECT_EQ(Registered("GetConfigInt", "Word", "\"x\""), "Int 8");
}
