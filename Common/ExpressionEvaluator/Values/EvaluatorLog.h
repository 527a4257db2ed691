#pragma once

#include "ExpressionEvaluatorApi.h"
#include "Services/LogFile.h"

/// The evaluator's log, shared by all evaluators. Ask IsEnabled() before building a text for it.
extern EE_API LogFile eeLog_gb;
