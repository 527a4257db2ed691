#pragma once

#include "Tables.h"

#include <string>

/// The bench instrument: one of the process, so that one is open at a time.
namespace Bench {
/// Opens the data folder, which is made from the profile when it is missing. Yields what was found wrong with its
/// files, a line each. Throws RuntimeError while another one is open or something runs.
WStringArray Open(const std::string& dataFolder, const std::string& profileFolder);
/// Writes what is counted, and lets go of the files. Throws RuntimeError while something runs.
void Close();
} // namespace Bench

/// What the open bench holds by name; of a bench that has been closed since then it throws ValueError.
class BenchTable : public Table
{
protected:
    BenchTable();
    void RequireOpen() const;

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
    static WStringArray GetSections();

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
