#pragma once

#include "Conversions.h"
#include "Session.h"

#include <memory>
#include <utility>

/// Named values, as a mapping of Python wants them.
class Table
{
public:
    Table() = default;
    virtual ~Table() = default;
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// Throws ValueError when the values are gone. To be called before all others but Set.
    virtual void Check() const {}
    /// A null object when there is none of that name.
    virtual py::object Get(const WString& name) = 0;
    /// Throws ValueError or TypeError for what cannot be the value. Calls Check, after it has asked the value for what
    /// it is, by which anything may happen.
    virtual void Set(const WString& name, py::handle value) = 0;
    virtual bool TryDelete(const WString& name) = 0;
    virtual WStringArray GetNames() = 0;
};

/// The variables of a session's evaluator.
class VariableTable : public Table
{
public:
    explicit VariableTable(std::shared_ptr<Session> session) : session(std::move(session)) {}
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;

private:
    const std::shared_ptr<Session> session;
};

/// The variables of the commands that a session runs.
class EnvironmentTable : public Table
{
public:
    explicit EnvironmentTable(std::shared_ptr<Session> session) : session(std::move(session)) {}
    py::object Get(const WString& name) override;
    void Set(const WString& name, py::handle value) override;
    bool TryDelete(const WString& name) override;
    WStringArray GetNames() override;

private:
    const std::shared_ptr<Session> session;
};
