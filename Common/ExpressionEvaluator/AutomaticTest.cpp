#include "DllRegistryUtils.h"
#include "ExpressionEvaluatorTester.h"

static const AddToAutomaticTestVector registerAutomaticTestRunExpressionEvaluatorTests(
    L"ExpressionEvaluator", L"Expression evaluator", 1, RunExpressionEvaluatorTests);
