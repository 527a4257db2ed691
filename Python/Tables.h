#pragma once

#include "Conversions.h"
#include "Session.h"

/// Named values, as a mapping of Python wants them.
class Table
{
public:
    Table() = default;
    virtual ~Table() = default;
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// A null object when there is none of that name.
    virtual py::object Get(const WString& name) = 0;
    /// Throws ValueError or TypeError for what cannot be the value.
    virtual void Set(const WString& name, py::handle value) = 0;
    virtual bool TryDelete(const WString& name) = 0;
    virtual WStringArray GetNames() = 0;
};

/// The variables of a session's evaluator. The session outlives it.
class VariableTable : public Table
{
public:
    explicit VariableTable(Session& session) : session(session) {}
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;

private:
    Session& session;
};

/// The variables of the commands that a session runs. The session outlives it.
class EnvironmentTable : public Table
{
public:
    explicit EnvironmentTable(Session& session) : session(session) {}
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;

private:
    Session& session;
};
