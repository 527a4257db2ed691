#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

/// A table of events for this test program alone.
class OwnEventTable : public testing::Environment
{
public:
    void SetUp() override { setenv("LABSH_EVENTS", name.c_str(), 1); }
    void TearDown() override { shm_unlink(("/" + name).c_str()); }

private:
    std::string name = "labsh-test-" + std::to_string(getpid());
};

[[maybe_unused]] static testing::Environment* const ownEventTable_lc =
    testing::AddGlobalTestEnvironment(new OwnEventTable);
