#pragma once

#include "Arguments.h"

/// Opens the instrument's data, of which what is damaged is reported on standard error, and loads the commands. Throws
/// HostException.
void Start(const Arguments& arguments);
/// Brings completion, without which the prompt works as well.
void LoadAssistant();
