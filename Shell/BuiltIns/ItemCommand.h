#pragma once

#include "BuiltIns/BuiltIn.h"
#include "Text/WStringArray.h"

/// A command on named values: lists those that match a pattern, shows one, sets one by "name=value", or deletes one.
class ItemCommand : public BuiltIn
{
public:
    ExitCode Main(ArgumentList& arguments, Options& options) override;

    static constexpr FlagOption zap{L"z", badOptionValue, L"Delete it"};
    static constexpr FlagOption json{L"json", badOptionValue, L"Write what is listed or shown as a JSON object"};

protected:
    using BuiltIn::BuiltIn;

    virtual void GetNames(WStringArray& names) = 0;
    virtual bool TryGet(const WString& name, WString& value) = 0;
    /// Fails when the value does not serve.
    virtual void Set(const WString& name, const WString& value) = 0;

    /// False when there is none; fails when it cannot be deleted.
    virtual bool TryDelete(const WString& name) = 0;
    /// Whether the value is a text, and not a number or a boolean.
    virtual bool IsText(const WString&) { return false; }

    /// Fails with the reason why what is there cannot be deleted.
    [[noreturn]] void FailToDelete(const WString& name, const WString& reason);
    /// Fails with the name that was most likely meant, and the remedy.
    [[noreturn]] void FailAsUnknown(const WString& name, const wchar_t* remedy = L"");
    /// The value as a number; fails when it is no 32-bit whole one.
    int ReadInt32(const WString& value);

private:
    void Show(const WString& name);
    void List(const WString& pattern);
    void ListAsJson(const WString& pattern);
};
