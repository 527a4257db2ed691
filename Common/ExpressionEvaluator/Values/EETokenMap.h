#pragma once

#include "Containers/ObjectHashTable.h"
#include "EEToken.h"
#include "ExpressionEvaluatorApi.h"
#include "LiveCounter.h"

/// Named variables of an evaluator. Names compare in any case; a later value replaces an earlier one. Serves one
/// thread at a time.
class EE_API EETokenMap
{
public:
    explicit EETokenMap(int bucketCount);
    virtual ~EETokenMap() = default;
    EETokenMap(const EETokenMap&) = delete;
    EETokenMap& operator=(const EETokenMap&) = delete;

    // A null name is the empty one.

    /// Stores a copy of the token, without its error code and missing-variable mark; NA for a null pointer.
    void SetVariable(const wchar_t* name, EEToken* token);
    void SetVariable(const wchar_t* name, EEToken& token);
    void SetVariable(const wchar_t* name, const wchar_t* value);
    void SetVariable(const wchar_t* name, double value);
    void SetVariable(const wchar_t* name, bool value);
    template <NoValuePointer T>
    void SetVariable(const wchar_t* name, T value) = delete;

    /// The stored token, or the default token "#NA"; never null, owned by the map.
    EEToken* GetVariable(const wchar_t* name);
    /// The stored token, or null.
    const EEToken* FindOrNull(const HashedName& name) const noexcept;
    /// True and the variable's text, else false and `defaultText`, or "#NA" when that is null.
    bool GetVariable(const wchar_t* name, WString& text, const wchar_t* defaultText);

    /// Takes over the other map's variables; both maps then share those tokens.
    void AddVariables(EETokenMap& other);
    ObjectHashTableIterator Begin() const { return ObjectHashTableIterator(variables); }
    void Clear() { variables.Clear(); }

private:
    ObjectHashTable variables;
    EEToken defaultToken;

    static std::atomic<int> liveCount;
    friend int GetDebugObjectCountExpressionEvaluator_CTokenMap();
    [[no_unique_address]] LiveCounter<liveCount> liveCounter;
};

/// How many maps are alive in the process.
EE_API int GetDebugObjectCountExpressionEvaluator_CTokenMap();
