#pragma once

#include "Services/File.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

/// One test of a report.
struct JUnitCase
{
    enum Kind
    {
        Failure,
        Error,
        Skipped
    };
    struct Problem
    {
        WString message;
        WString code; // may be empty, as the details
        WString details;
    };

    WString group;
    WString name;
    WString file; // where the test stands; empty when that is not known
    unsigned int line = 0;
    std::optional<double> seconds; // that it took
    Kind kind = Failure;           // of the problems
    std::vector<Problem> problems;
};

/// The outcome of tests as the XML that build servers read. It is valid whatever the texts hold.
class JUnitReport
{
public:
    void Add(const JUnitCase& test);
    /// Writes it to the open file of that name, which is left empty when the report cannot be written. Throws
    /// HostException(FileError).
    void Write(File& file, const WString& name) const;

private:
    std::string cases;
    unsigned int caseCount = 0;
    std::array<unsigned int, 3> counts{}; // of the cases with problems, by their kind
};
