#include "Instrument/System.h"
#include "ExpressionEvaluator.h"
#include "FunctionArguments.h"
#include "FunctionClasses.h"
#include "Instrument/OS9EventManager.h"
#include "Services/File.h"

#include <limits>

using namespace FunctionArguments;

namespace {
/// The value of a status item by its type; all but booleans and numbers are taken as text.
void SetStatus(EEToken& result, const StatusValue& item)
{
    using IntLimits = std::numeric_limits<int>;
    switch (item.type) {
    case ST_Bool:
        if (bool value; item.TryGetBool(value))
            return result.SetValue(value);
        throw ExpressionEvaluatorException(Errors::StatusBooleanFailed, -1);
    case ST_Double:
        if (double value; item.TryGetDouble(value))
            return result.SetValue(value);
        throw ExpressionEvaluatorException(Errors::StatusDoubleFailed, -1);
    case ST_Int:
    case ST_UInt:
    case ST_UInt64:
        if (int value; item.TryGetInt(value, IntLimits::min(), IntLimits::max()))
            return result.SetValue(static_cast<double>(value));
        throw ExpressionEvaluatorException(Errors::StatusIntegerFailed, -1);
    default:
        if (WString value; item.TryGetFormattedString(value))
            return result.SetValue(value);
        throw ExpressionEvaluatorException(Errors::StatusFormattedFailed, -1);
    }
}

/// The name of a file that exists.
WString PopFileName(EETokenStack& arguments)
{
    const EEToken& argument = arguments.Pop();
    WString name = argument.GetWString(false);
    if (!File::Exists(name))
        throw ExpressionEvaluatorException(Errors::FileNotFound, argument.GetPosition());
    return name;
}

/// The sum of the file's little-endian 32-bit words, the last one filled up with zero bytes.
std::uint32_t SumWords(File& file)
{
    Buffer block(4096); // whole words, so that every block begins with one
    std::uint32_t sum = 0;
    do {
        file.Read(block);
        for (std::size_t index = 0; index < block.GetLength(); ++index)
            sum += static_cast<std::uint32_t>(block.GetData()[index]) << (index % 4 * 8);
    } while (block.GetLength() == block.GetCapacity());
    return sum;
}
} // namespace

void EEGetStatus::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 1, 2, Errors::GetStatusParameters);
    const WString key = PopStrictText(arguments);
    if (StatusValue item; System::status.TryGet(key, item))
        SetStatus(result, item);
    else
        PopDefault(result, arguments, Errors::StatusNotFound);
}

void EEGetUsage::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 1, 2, Errors::GetUsageParameters);
    const WString key = PopStrictText(arguments);
    if (int value; System::usage.TryGetUsageValue(key.ToCString(), value))
        result.SetValue(static_cast<double>(value));
    else
        PopDefault(result, arguments, Errors::UsageNotFound);
}

void EEGetEnv::Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator* evaluator)
{
    const WString name = PopStrictText(arguments);
    if (!evaluator || !evaluator->TryGetEnvironmentVariableValue(result, name))
        SetArgument(result, arguments.Pop());
}

void EEGetEvent::Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator*)
{
    OS9EventData* const event = OS9EventManager::GetOS9Event(PopStrictText(arguments));
    if (!event)
        throw ExpressionEvaluatorException(Errors::EventNotFound, -1);
    const int value = event->Read();
    event->ReleaseReference();
    result.SetValue(static_cast<double>(value));
}

EEGetProcId::EEGetProcId(const wchar_t* name, int parameterCount, bool answerAsIsRunning)
    : EEFunction(name, parameterCount), answerAsIsRunning(answerAsIsRunning)
{}

void EEGetProcId::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 1, 2, Errors::GetProcIdParameters);
    const WString command = PopStrictText(arguments);
    const bool anyCommandLine = arguments.IsEmpty();
    const WString commandLine = anyCommandLine ? WString() : PopStrictText(arguments);
    const int id = System::GetMatchingProcess(command.ToCString(), anyCommandLine ? nullptr : commandLine.ToCString());
    if (answerAsIsRunning)
        result.SetValue(id != -1);
    else
        result.SetValue(static_cast<double>(id));
}

void EEFileExist::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(File::Exists(PopStrictText(arguments)));
}

void EEFileSize::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const File file(PopFileName(arguments), FileOpenMode::OpenExisting, FileAccessMode::Read);
    result.SetValue(static_cast<double>(file.GetFileSize()));
}

void EEFileCrc::Evaluate(EEToken& result, EETokenStack& arguments)
{
    std::uint32_t crc = 0;
    File::GetCrc(PopFileName(arguments), crc, true);
    result.SetValue(static_cast<double>(crc));
}

void EEFileZynqChecksum::Evaluate(EEToken& result, EETokenStack& arguments)
{
    File file(PopFileName(arguments), FileOpenMode::OpenExisting, FileAccessMode::Read);
    result.SetValue(static_cast<double>(~SumWords(file)));
}
