#pragma once

#include "Commands/CommandRunner.h"

/// Writes one line on standard error: the place, the code's text and, where known, the message.
void Report(const WString& place, const ExitCode& code, const WString& message);
