#include "EvaluatorLog.h"

LogFile eeLog_gb(L"", L"EELog", 0x100000);
