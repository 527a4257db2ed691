#pragma once

#include "Commands/CommandRecord.h"

#include <span>
#include <vector>

// The shell's own commands; each record stands in the file of its name.
extern const CommandRecord assertFail_gb;
extern const CommandRecord config_gb;
extern const CommandRecord echo_gb;
extern const CommandRecord event_gb;
extern const CommandRecord exit_gb;
extern const CommandRecord help_gb;
extern const CommandRecord log_gb;
extern const CommandRecord plugins_gb;
extern const CommandRecord run_gb;
extern const CommandRecord stats_gb;
extern const CommandRecord status_gb;
extern const CommandRecord test_gb;
extern const CommandRecord usage_gb;
extern const CommandRecord wait_gb;
extern const CommandRecord watch_gb;

/// Those that any program can run, which has them from BenchCommands.dll: all but Watch, which draws on a terminal.
std::span<const CommandRecord* const> GetBenchCommands();
/// All of them.
std::vector<const CommandRecord*> GetBuiltIns();
/// Adds them to CommandRegistry.
void AddBuiltIns();
