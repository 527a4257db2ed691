#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <unistd.h>

/// A table of events for this test program alone.
class OwnEventTable : public testing::Environment
{
public:
    void SetUp() override { setenv("LABSH_EVENTS", name.c_str(), 1); }
    void TearDown() override { Remove(); }
    void Remove() const { unlink(file.c_str()); }

    const std::string name = "labsh-test-" + std::to_string(getpid());
    const std::string file = "/dev/shm/" + name;
};

[[maybe_unused]] static const OwnEventTable& ownTable_lc =
    static_cast<OwnEventTable&>(*testing::AddGlobalTestEnvironment(new OwnEventTable));
