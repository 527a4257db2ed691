#pragma once

/// One error of the evaluator: the third field of its exit code (0, 505, n) and its message. A number may stand for
/// several messages; "%s" and "%d" in a message are filled in where it is raised.
struct EvaluatorError
{
    unsigned int number;
    const wchar_t* message;
};

/// Every error, in one place.
namespace Errors {
// Values

inline constexpr EvaluatorError ToNumberMismatch{2, L"Type mismatch"};
inline constexpr EvaluatorError NumberMismatch{4, L"Type mismatch"};
inline constexpr EvaluatorError BoolMismatch{6, L"Type mismatch"};
inline constexpr EvaluatorError TextMismatch{8, L"Type mismatch"};
inline constexpr EvaluatorError StackEmpty{9, L"Stack empty"};
inline constexpr EvaluatorError MissingVariable{48, L"Missing variable: "};
inline constexpr EvaluatorError ArgumentOutOfRange{50, L"Argument value out of range"};
inline constexpr EvaluatorError UnnamedError{123, L""};
inline constexpr EvaluatorError BooleanIsNoNumber{143, L"Boolean is not a number"};
inline constexpr EvaluatorError NumberInfinite{149, L"Number is infinite"};
inline constexpr EvaluatorError NotANumber{150, L"Not a number"};

// Reading tokens

inline constexpr EvaluatorError StringTooLong{35, L"String too long"};
inline constexpr EvaluatorError StringUnterminated{36, L"Missing \", unexpected end of string"};
inline constexpr EvaluatorError InvalidNumber{37, L"Invalid number"};
inline constexpr EvaluatorError InvalidNameCharacter{38, L"Invalid character"};
inline constexpr EvaluatorError VariableNameTooLong{39, L"Variable name is too long"};

// References to the instrument

inline constexpr EvaluatorError StatusInaccessible{40, L"Cannot access status value (ST_*=%d)"};
inline constexpr EvaluatorError ReferenceTypeInvalid{41, L"Invalid instrument variable type"};
inline constexpr EvaluatorError ReferenceStartExpected{
    42, L"Expecting a '{' character as the start of an instrument variable"};
inline constexpr EvaluatorError ReferenceEndExpected{
    43, L"Expecting a '}' character as delimiter of the instrument variable"};
inline constexpr EvaluatorError ConfigSectionUnclosed{
    45, L"Invalid config section name, missing ']', in name: %%C{%s}"};
inline constexpr EvaluatorError ConfigSectionMissing{46, L"Missing config section name, in %%C{%s}"};
inline constexpr EvaluatorError EnvironmentUnsupported{49, L"Environment instrument variables not supported"};

// Grammar

inline constexpr EvaluatorError OperandAfterOperand{7, L"Operand not expected"};
inline constexpr EvaluatorError TwoUnaryOperators{15, L"Two consecutive unary operators not allowed"};
inline constexpr EvaluatorError OperandExpectedAtDual{16, L"Operand Expected"};
inline constexpr EvaluatorError OperandExpectedAtEnd{17, L"Operand Expected"};
inline constexpr EvaluatorError OperatorExpected{18, L"Operator Expected"};
inline constexpr EvaluatorError OperandExpectedAtClose{19, L"Operand Expected"};
inline constexpr EvaluatorError OperandExpectedAtBinary{20, L"Expecting operand"};
inline constexpr EvaluatorError UnaryAfterOperand{21, L"Operand not expected"};
inline constexpr EvaluatorError CallAfterOperand{22, L"Operand not expected"};
inline constexpr EvaluatorError FunctionWithoutParameters{23, L"Internal error Invalid number or function prms"};
inline constexpr EvaluatorError CloseExpected{24, L"Expected ')'"};
inline constexpr EvaluatorError TooManyParametersAtSeparator{25, L"Too many parameters"};
inline constexpr EvaluatorError TooManyParametersAtClose{26, L"Too many parameters"};
inline constexpr EvaluatorError MissingParameter{28, L"Missing parameter"};
inline constexpr EvaluatorError CallUnclosed{30, L"Missing ')'"};
inline constexpr EvaluatorError TokenUnrecognized{31, L"Internal error, unrecognized token type"};
inline constexpr EvaluatorError CloseUnmatched{32, L"Closing parenthesis without matching opening parenthesis"};
inline constexpr EvaluatorError SeparatorOutsideCall{33, L"Parameter separator not allowed outside function call"};
inline constexpr EvaluatorError EndExpected{34, L"Expression end expected"};
inline constexpr EvaluatorError EmptyArgument{145, L"Missing parameter"};
inline constexpr EvaluatorError NestedTooDeeply{513, L"Expression is nested too deeply"};

// Evaluation

inline constexpr EvaluatorError InvalidOperatorCharacter{10, L"Invalid character"};
inline constexpr EvaluatorError InvalidBinaryOperator{11, L"Invalid binary operator"};
inline constexpr EvaluatorError InvalidUnaryOperator{12, L"Invalid function"};
inline constexpr EvaluatorError Unevaluated{13, L"#UNK"};
inline constexpr EvaluatorError FunctionTokenExpected{14, L"Internal Error, EvaluatePostfixSubExpr expected TT_FUNCOP"};
inline constexpr EvaluatorError UnexpectedToken{126, L"Unexpected token encountered"};
inline constexpr EvaluatorError UnexpectedEnd{127, L"Unexpected end of sub expression"};
inline constexpr EvaluatorError UnexpectedStackEnd{128, L"Unexpected end of postfix stack"};
inline constexpr EvaluatorError NoDouble{129, L"Expression cannot be evaluated as a number"};
inline constexpr EvaluatorError NoInt{130, L"Expression cannot be evaluated as a number"};
inline constexpr EvaluatorError NoBool{131, L"Expression cannot be evaluated as a number"};
inline constexpr EvaluatorError Unrecorded{132, L""};
inline constexpr EvaluatorError DivideByZero{133, L"Divide by zero"};
inline constexpr EvaluatorError UnknownFunction{201, L"Unknown function: %s"};
inline constexpr EvaluatorError HostExitCode{911, L""};
inline constexpr EvaluatorError ForeignArgumentError{912, L""};

// Functions: framework

inline constexpr EvaluatorError OneParameterRequired{116, L"%s requires 1 parameter"};
inline constexpr EvaluatorError WrongEvaluateOverload{144, L"Incorrect function Evaluate overload function is invoked"};
inline constexpr EvaluatorError UnknownFunctionInTable{200, L"Unknown function %s"};
inline constexpr EvaluatorError InvalidOperation{504, L"Invalid operation"};

// Functions: logic and statistics

inline constexpr EvaluatorError RandParameters{
    27, L"Rand() requires a min and a max parameter + optionally a skip parameter"};
inline constexpr EvaluatorError InterceptParameters{101, L"Missing parameter"};
inline constexpr EvaluatorError SlopeParameters{102, L"Missing parameter"};
inline constexpr EvaluatorError NoBooleanValue{112, L"Value cannot be converted to a boolean"};
inline constexpr EvaluatorError StDevParameters{151, L"Missing parameter"};
inline constexpr EvaluatorError ModulusByZero{154, L"Modulus by zero"};
inline constexpr EvaluatorError RandSameLimits{510, L"Rand(min, max) used with same value for min and max parameter"};

// Functions: text and lists

inline constexpr EvaluatorError StrReplaceTooFew{27, L"StrReplace requires at least 3 parameters"};
inline constexpr EvaluatorError StrReplaceTooMany{25, L"StrReplace does not support more than 4 parameters"};
inline constexpr EvaluatorError InvalidHexadecimal{50, L"Invalid hexadecimal value"};
inline constexpr EvaluatorError ValNoNumber{111, L"Val, cannot convert to number"};
inline constexpr EvaluatorError MidParameters{122, L"Mid/Substring requires 2 or 3 parameters"};
inline constexpr EvaluatorError IndexOfTooFew{134, L"Missing parameter"};
inline constexpr EvaluatorError IndexOfTooMany{135, L"Too many parameters"};
inline constexpr EvaluatorError StartsWithParameters{141, L"StartsWith requires 2 or 3 parameters"};
inline constexpr EvaluatorError EndsWithParameters{142, L"EndsWith requires 2 or 3 parameters"};
inline constexpr EvaluatorError CharacterIndexOutOfRange{148, L"Character index out of range"};
inline constexpr EvaluatorError ToHexParameters{155, L"ToHext requires 1 or 2 parameters"};
inline constexpr EvaluatorError ListLenTooFew{27, L"ListLen requires a string containing a list as argument"};
inline constexpr EvaluatorError ListLenTooMany{25, L"ListLen too many parameters specified"};
inline constexpr EvaluatorError ListLenSeparator{157, L"ListLen separator is more than one character long"};
inline constexpr EvaluatorError ListItemTooFew{27, L"ListItem requires 2 - 3 parameters"};
inline constexpr EvaluatorError ListItemTooMany{25, L"ListItem requires 2 - 3 parameters"};
inline constexpr EvaluatorError ListItemSeparator{152, L"ListItem separator is invalid"};
inline constexpr EvaluatorError ListItemNotFound{153, L"The requested ListItem was not found"};
inline constexpr EvaluatorError IsInListTooFew{27, L"IsInList requires 2 - 4 arguments"};
inline constexpr EvaluatorError IsInListTooMany{25, L"IsInList too many arguments"};
inline constexpr EvaluatorError IsInListSeparator{158, L"IsInList separator is more than one character long"};
inline constexpr EvaluatorError InvalidVersion{511, L"Invalid version number"};

// Functions: formats and dates

inline constexpr EvaluatorError FtoaDigits{104, L"Ftoa invalid number of digits"};
inline constexpr EvaluatorError FcvtDigits{106, L"Fcvt invalid number of digits"};
inline constexpr EvaluatorError FmtEngDigits{108, L"FmtEng invalid number of digits"};
inline constexpr EvaluatorError RoundDecimals{110, L"Round, invalid number of decimals"};
inline constexpr EvaluatorError InvalidDate{146, L"Invalid date: %d"};
inline constexpr EvaluatorError InvalidDays{147, L"Invalid days value: %d"};

// Functions: configuration and system

inline constexpr EvaluatorError GetConfigParameters{113, L"GetConfig/Config requires 2 or 3 parameters"};
inline constexpr EvaluatorError GetConfigTypeParameters{
    113, L"GetConfig<type>/Config<type> requires 2 or 3 parameters"};
inline constexpr EvaluatorError ConfigNotFound{114, L"Config value not found"};
inline constexpr EvaluatorError ConfigTypeUnsupported{139, L"GetConfig[<type>], unsupported type"};
inline constexpr EvaluatorError ConfigNotConvertible{140, L"Cannot convert config value to requested type"};
inline constexpr EvaluatorError GetStatusParameters{117, L"GetStatus requires 1 or 2 parameters"};
inline constexpr EvaluatorError StatusNotFound{118, L"Status value not found"};
inline constexpr EvaluatorError StatusBooleanFailed{119, L"Failed to fetch status boolean"};
inline constexpr EvaluatorError StatusIntegerFailed{119, L"Failed to fetch status integer"};
inline constexpr EvaluatorError StatusDoubleFailed{119, L"Failed to fetch status double"};
inline constexpr EvaluatorError StatusFormattedFailed{119, L"Failed to fetch status formatted string"};
inline constexpr EvaluatorError FileNotFound{124, L"File not found"};
inline constexpr EvaluatorError GetUsageParameters{136, L"GetUsage requires 1 or 2 parameters"};
inline constexpr EvaluatorError UsageNotFound{137, L"Usage value not found"};
inline constexpr EvaluatorError GetProcIdParameters{25, L"GetProcId/IsRunning requires 1 or 2 parameters"};
inline constexpr EvaluatorError EventNotFound{512, L"OS9Event not found"};
} // namespace Errors
