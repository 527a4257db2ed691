#include "BuiltIns/BuiltIns.h"

static constexpr const CommandRecord* records_lc[] = {
    &assertFail_gb,
    &config_gb,
    &echo_gb,
    &event_gb,
    &exit_gb,
    &help_gb,
    &log_gb,
    &plugins_gb,
    &run_gb,
    &stats_gb,
    &status_gb,
    &test_gb,
    &usage_gb,
    &wait_gb,
};

std::span<const CommandRecord* const> GetBenchCommands()
{
    return records_lc;
}
