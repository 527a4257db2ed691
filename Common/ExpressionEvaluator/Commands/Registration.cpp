// All that the plug-in registers while it is loaded, in one file, because only within a file does the language promise
// the order in which these objects are made.

#include "AssertCommand.h"
#include "Calc.h"
#include "DllRegistryUtils.h"
#include "EETokenMap.h"
#include "EvaluatorLog.h"
#include "ExpressionEvaluatorFunctions.h"
#include "If.h"
#include "SelfTest.h"
#include "Services/ObjectCounters.h"
#include "SetCommand.h"
#include "While.h"

static const AddToCommandVector addAssertCommand(CreateCommandAssertCommand);
static const AddToCommandVector addCalc(CreateCommandCalc);
static const AddToCommandVector addIf(CreateCommandIf);
static const AddToCommandVector addSetCommand(CreateCommandSetCommand);
static const AddToCommandVector addWhile(CreateCommandWhile);

static const AddToDebugObjectCountVector tokenCounter(
    L"ExpressionEvaluator_EEToken", GetDebugObjectCountExpressionEvaluator_EEToken);
static const AddToDebugObjectCountVector mapCounter(
    L"ExpressionEvaluator_CTokenMap", GetDebugObjectCountExpressionEvaluator_CTokenMap);

LogFile eeLog_gb(L"", L"EELog", 0x100000);

static const AddToDebugObjectCountVector functionCounter(
    L"ExpressionEvaluator_CExprFn", GetDebugObjectCountExpressionEvaluator_CExprFn);
EEFunctionTable fnTable_gb;

static const AddToAutomaticTestVector registerAutomaticTestRunExpressionEvaluatorTests(
    L"ExpressionEvaluator", L"Expression evaluator", 1, RunExpressionEvaluatorTests);
