#pragma once

#include "ExpressionEvaluatorFunctions.h"
#include "Instrument/ConfigMetaData.h"

/// The classes of the built-in functions. Most override Evaluate for their arguments and add nothing else; what a
/// function needs besides them is a further parameter.
#define EE_FUNCTION(Name, ...)                                                                                         \
    class Name : public EEFunction                                                                                     \
    {                                                                                                                  \
    public:                                                                                                            \
        using EEFunction::EEFunction;                                                                                  \
        using EEFunction::Evaluate;                                                                                    \
        void Evaluate(EEToken& result, EETokenStack& arguments __VA_OPT__(, ) __VA_ARGS__) override;                   \
    }

// Logic
EE_FUNCTION(EEIf);
EE_FUNCTION(EENot);
EE_FUNCTION(EEIsNA);
EE_FUNCTION(EEIsErr);
EE_FUNCTION(EEDefined);
EE_FUNCTION(EEInitIfNa);
EE_FUNCTION(EEBool);

// Statistics
EE_FUNCTION(EEAvg);
EE_FUNCTION(EEMax);
EE_FUNCTION(EEMin);
EE_FUNCTION(EESum);
EE_FUNCTION(EEMedian);
EE_FUNCTION(EEMod);
EE_FUNCTION(EEStDev);
EE_FUNCTION(EESlope);
EE_FUNCTION(EEIntercept);
EE_FUNCTION(EERand);

// Text
EE_FUNCTION(EELen);
EE_FUNCTION(EELeft);
EE_FUNCTION(EERight);
EE_FUNCTION(EEMid);
EE_FUNCTION(EEIndexOf);
EE_FUNCTION(EEStartsWith);
EE_FUNCTION(EEEndsWith);
EE_FUNCTION(EEUCase);
EE_FUNCTION(EELCase);
EE_FUNCTION(EEToString);
EE_FUNCTION(EEStrCat);
EE_FUNCTION(EEStrReplace);
EE_FUNCTION(EEVal);
EE_FUNCTION(EEToHex);
EE_FUNCTION(EEFromHex);
EE_FUNCTION(EEMatches);
EE_FUNCTION(EEVersionCompare);

// Lists
EE_FUNCTION(EEListLen);
EE_FUNCTION(EEListItem);
EE_FUNCTION(EEIsInList);

// Formats
EE_FUNCTION(EEFtoa);
EE_FUNCTION(EEFcvt);
EE_FUNCTION(EEFmtEng);
EE_FUNCTION(EERound);

// System
EE_FUNCTION(EEGetStatus);
EE_FUNCTION(EEGetUsage);
EE_FUNCTION(EEFileExist);
EE_FUNCTION(EEFileSize);
EE_FUNCTION(EEFileCrc);
EE_FUNCTION(EEFileZynqChecksum);
EE_FUNCTION(EEGetEnv, ExpressionEvaluator* evaluator);
EE_FUNCTION(EEGetEvent, ExpressionEvaluator* evaluator);

#undef EE_FUNCTION

/// GetProcId, and IsRunning when `answerAsIsRunning` is set.
class EEGetProcId : public EEFunction
{
public:
    EEGetProcId(const wchar_t* name, int parameterCount, bool answerAsIsRunning = false);
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments) override;

private:
    const bool answerAsIsRunning;
};

/// A configuration value whose type is read off its text or its default.
class EEGetConfig : public EEFunction
{
public:
    using EEFunction::EEFunction;
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments) override;

protected:
    // A null default is none given: there is nothing to register, and nothing to answer from (code 114).

    /// Reads an existing key as the type; throws 140 when its text does not convert.
    void GetExistingConfigValue(EEToken& result, const WString& section, const WString& key, ConfigDataType type);
    /// Answers for a missing key from the default.
    void SetupConfigDefaultValue(
        EEToken& result, EEToken* defaultValue, const WString& section, const WString& key, ConfigDataType type);
    /// Records the key's type and default in the metadata.
    void RegisterConfigDefaultValue(
        EEToken* defaultValue, const WString& section, const WString& key, ConfigDataType type);
    ConfigDataType GetDataTypeOfDefault(const EEToken& defaultValue) const;
    /// The narrowest type that holds the number.
    ConfigDataType GetBestDataTypeForNumber(double value) const;
};

/// A configuration value of a fixed type.
class EEGetConfigType : public EEGetConfig
{
public:
    EEGetConfigType(const wchar_t* name, int parameterCount, ConfigDataType type);
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments) override;

private:
    const ConfigDataType type;
};

// Routines of all arguments; the greatest and the smallest take one at least.

double GetSum(std::span<const double> numbers);
double GetMean(std::span<const double> numbers);
double GetGreatest(std::span<const double> numbers);
double GetSmallest(std::span<const double> numbers);

// Routines of one number.

double sign(double value);      // -1 below 0, else 1
double MyInt(double value);     // truncation toward zero
double DateToDays(double date); // YYYYMMDD to days since 30-Dec-1899; throws 146
double DaysToDate(double days); // and back; throws 147
