#include "FunctionArguments.h"
#include "FunctionClasses.h"
#include "Instrument/System.h"
#include "Saturate.h"
#include "Text/NumberText.h"

#include <cmath>
#include <limits>

using namespace FunctionArguments;

namespace {
using IntLimits = std::numeric_limits<int>;
using UIntLimits = std::numeric_limits<unsigned int>;
using DoubleLimits = std::numeric_limits<double>;

struct ConfigArguments
{
    WString section;
    WString key;
    EEToken* defaultValue; // null when none is given; lies in the stack
};

ConfigArguments PopConfigArguments(EETokenStack& arguments, const EvaluatorError& countError)
{
    CheckCount(arguments, 2, 3, countError);
    WString section = PopStrictText(arguments);
    WString key = PopStrictText(arguments);
    return {std::move(section), std::move(key), arguments.IsEmpty() ? nullptr : &arguments.Pop()};
}

/// The text of a setting as the type.
bool TrySetConfig(EEToken& result, const WString& text, ConfigDataType type)
{
    switch (type) {
    case ConfigDataType::Int:
        if (int value; TryReadWholeDecimal(text.begin(), text.end(), value, IntLimits::min(), IntLimits::max()))
            return result.SetValue(static_cast<double>(value)), true;
        return false;
    case ConfigDataType::UInt:
        if (unsigned int value; TryReadWholeDecimal(text.begin(), text.end(), value, 0U, UIntLimits::max()))
            return result.SetValue(static_cast<double>(value)), true;
        return false;
    case ConfigDataType::Dbl:
        if (double value; text.TryParseDouble(value))
            return result.SetValue(value), true;
        return false;
    case ConfigDataType::Str: return result.SetValue(text), true;
    case ConfigDataType::Bool:
        if (bool value; text.TryGetBool(value))
            return result.SetValue(value), true;
        return false;
    }
    throw ExpressionEvaluatorException(Errors::ConfigTypeUnsupported, -1);
}

void SetConfig(EEToken& result, const WString& text, ConfigDataType type)
{
    if (!TrySetConfig(result, text, type))
        throw ExpressionEvaluatorException(Errors::ConfigNotConvertible, -1);
}
} // namespace

void EEGetConfig::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const auto [section, key, defaultValue] = PopConfigArguments(arguments, Errors::GetConfigParameters);
    const ConfigDataType type = defaultValue ? GetDataTypeOfDefault(*defaultValue) : ConfigDataType::Str;
    WString text;
    if (!System::config.TryGetString(section, key, text))
        return SetupConfigDefaultValue(result, defaultValue, section, key, type);
    RegisterConfigDefaultValue(defaultValue, section, key, type);
    double number;
    SetConfig(result, text, text.TryParseDouble(number) ? GetBestDataTypeForNumber(number) : type);
}

EEGetConfigType::EEGetConfigType(const wchar_t* name, int parameterCount, ConfigDataType type)
    : EEGetConfig(name, parameterCount), type(type)
{}

// Registering a default takes it as the fixed type, so one of another kind is refused even where the key exists.
void EEGetConfigType::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const auto [section, key, defaultValue] = PopConfigArguments(arguments, Errors::GetConfigTypeParameters);
    if (!System::config.Contains(section, key))
        return SetupConfigDefaultValue(result, defaultValue, section, key, type);
    RegisterConfigDefaultValue(defaultValue, section, key, type);
    GetExistingConfigValue(result, section, key, type);
}

void EEGetConfig::GetExistingConfigValue(
    EEToken& result, const WString& section, const WString& key, ConfigDataType type)
{
    WString text;
    if (!System::config.TryGetString(section, key, text))
        throw ExpressionEvaluatorException(Errors::ConfigNotConvertible, -1);
    SetConfig(result, text, type);
}

void EEGetConfig::SetupConfigDefaultValue(
    EEToken& result, EEToken* defaultValue, const WString& section, const WString& key, ConfigDataType type)
{
    if (!defaultValue)
        throw ExpressionEvaluatorException(Errors::ConfigNotFound, -1);
    const ConfigFileData& config = System::config;
    const ExitCode failure(0, evaluatorModule, Errors::ConfigNotConvertible.number);
    switch (type) {
    case ConfigDataType::Int:
        return result.SetValue(static_cast<double>(config.GetIntOrUseDefault(
            section, key, Saturate<int>(defaultValue->GetNumber()), failure, IntLimits::min(), IntLimits::max())));
    case ConfigDataType::UInt:
        return result.SetValue(static_cast<double>(config.GetUIntOrUseDefault(
            section, key, Saturate<unsigned int>(defaultValue->GetNumber()), failure, 0, UIntLimits::max())));
    case ConfigDataType::Dbl:
        return result.SetValue(config.GetDoubleOrUseDefault(
            section, key, defaultValue->GetNumber(), failure, DoubleLimits::lowest(), DoubleLimits::max()));
    case ConfigDataType::Str:
        return result.SetValue(
            config.GetStringOrUseDefault(section, key, defaultValue->GetWString(false), failure, -1, IntLimits::max()));
    case ConfigDataType::Bool:
        return result.SetValue(config.GetBoolOrUseDefault(section, key, defaultValue->GetBool(), failure));
    }
    throw ExpressionEvaluatorException(Errors::ConfigTypeUnsupported, -1);
}

void EEGetConfig::RegisterConfigDefaultValue(
    EEToken* defaultValue, const WString& section, const WString& key, ConfigDataType type)
{
    if (!defaultValue)
        return;
    ConfigMetaData& metaData = System::config.GetMetaData();
    const auto update = [&](double number) {
        metaData.Update(section, key, type, nullptr, DoubleLimits::lowest(), DoubleLimits::max(), number);
    };
    switch (type) {
    case ConfigDataType::Int: return update(Saturate<int>(defaultValue->GetNumber()));
    case ConfigDataType::UInt: return update(Saturate<unsigned int>(defaultValue->GetNumber()));
    case ConfigDataType::Dbl: return update(defaultValue->GetNumber());
    case ConfigDataType::Bool: return update(defaultValue->GetBool() ? 1 : 0);
    case ConfigDataType::Str:
        return metaData.UpdateStr(
            section, key, nullptr, -1, IntLimits::max(), defaultValue->GetWString(false).ToCString());
    }
    throw ExpressionEvaluatorException(Errors::ConfigTypeUnsupported, -1);
}

ConfigDataType EEGetConfig::GetDataTypeOfDefault(const EEToken& defaultValue) const
{
    switch (defaultValue.GetDataType()) {
    case DT_BOOL: return ConfigDataType::Bool;
    case DT_STR: return ConfigDataType::Str;
    default: return GetBestDataTypeForNumber(defaultValue.GetNumber());
    }
}

ConfigDataType EEGetConfig::GetBestDataTypeForNumber(double value) const
{
    if (value != std::floor(value) || value < IntLimits::min())
        return ConfigDataType::Dbl;
    if (value <= IntLimits::max())
        return ConfigDataType::Int;
    if (value <= UIntLimits::max())
        return ConfigDataType::UInt;
    return ConfigDataType::Dbl;
}
