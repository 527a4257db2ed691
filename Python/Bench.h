#pragma once

#include "Tables.h"

#include <string>

/// The bench instrument: one of the process, so that one is open at a time.
namespace Bench {
/// Opens the data folder, which is made from the profile when it is missing. Yields what was found wrong with its
/// files, a line each. Throws RuntimeError while another one is open or something runs.
WStringArray Open(const std::string& dataFolder, const std::string& profileFolder);
/// The number of the open bench, which no other one of the process has; 0 while none is open.
unsigned int GetOpen() noexcept;
/// Throws ValueError unless the bench of that number is open.
void Require(unsigned int number);
/// Writes what is counted, and lets go of the files; false when the bench of that number is not open. Throws
/// RuntimeError while something runs.
bool Close(unsigned int number);
/// In a process that was forked off: leaves the bench to the parent, so that none is open.
void Leave();
/// The sections of the settings. Throws ValueError unless the bench of that number is open.
WStringArray GetSections(unsigned int number);
} // namespace Bench

/// What the open bench holds by name.
class BenchTable : public Table
{
public:
    BenchTable();
    void Check() const override;

private:
    const unsigned int bench;
};

class StatusTableOfBench : public BenchTable
{
public:
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;
};

/// One section of the settings.
class ConfigTable : public BenchTable
{
public:
    explicit ConfigTable(const WString& section) : section(section) {}
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;

private:
    const WString section;
};

/// The usage counters.
class UsageTable : public BenchTable
{
public:
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;
};

/// The events, which all processes of the user share.
class EventTable : public BenchTable
{
public:
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;
};
