#pragma once

#include "Cases.h"

/// A wrong value, or an error, ends the program with a message: its time would mean nothing.
void Check(const std::string& name, const Value& value, const Value& expected);
