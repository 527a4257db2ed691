#pragma once

#include "Commands/AutomaticTestEntry.h"

#include <string>
#include <vector>

/// The outcome of tests as the XML that build servers read.
class JUnitReport
{
public:
    void Add(const AutomaticTestEntry& test, const std::vector<WString>& failures);
    /// Replaces the file. Throws HostException(FileError).
    void Write(const WString& file) const;

private:
    std::string cases;
    unsigned int testCount = 0;
    unsigned int failureCount = 0; // tests with a failure
};
