#include "BuiltIns/BuiltIns.h"

#include "Commands/CommandRegistry.h"

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
    &watch_gb,
};

std::span<const CommandRecord* const> GetBuiltIns()
{
    return records_lc;
}

void AddBuiltIns()
{
    for (const CommandRecord* record : records_lc)
        CommandRegistry::Add(record->factory, "");
}
