#pragma once

#include "BuiltIns/BuiltIn.h"
#include "Text/WStringArray.h"

/// A command on named values: lists those that match a pattern, shows one, or sets one by "name=value".
class ItemCommand : public BuiltIn
{
public:
    ExitCode Main(ArgumentList& arguments, Options& options) override;

protected:
    using BuiltIn::BuiltIn;

    virtual void GetNames(WStringArray& names) = 0;
    virtual bool TryGet(const WString& name, WString& value) = 0;
    /// Fails when the value does not serve.
    virtual void Set(const WString& name, const WString& value) = 0;

    /// The value as a number; fails when it is no 32-bit whole one.
    int ReadInt32(const WString& value);
    /// Fails since there is no such value; asks for the one that was meant.
    [[noreturn]] void FailAsAbsent(const WString& name);

private:
    void Show(const WString& name);
    void List(const WString& pattern);
};
