#pragma once

#include "Commands/PluginSegments.h"

#include <optional>

/// The dynamic section of a plug-in and what the dynamic loader finds by it: names, symbols, their hash table and their
/// versions. The constructor checks them, and throws PluginFault.
class PluginTables
{
public:
    explicit PluginTables(const PluginSegments& segments);

    const PluginSegments& GetSegments() const noexcept { return segments; }

    std::optional<std::uint64_t> Find(std::int64_t tag) const;
    /// Throws PluginFault when `what` has no such entry.
    std::uint64_t Get(std::int64_t tag, const char* what) const;

    /// The symbol, once it is checked; throws PluginFault.
    const ElfW(Sym) & CheckSymbol(std::uint64_t number) const;

private:
    const PluginSegments& segments;
    std::vector<ElfW(Dyn)> entries;
    std::vector<char> names;
    std::vector<ElfW(Sym)> symbols;   // and what stands behind them: their number is told nowhere
    std::vector<ElfW(Half)> versions; // of the symbols
    unsigned int lastVersion = VER_NDX_GLOBAL;

    void ReadEntries();
    void ReadNames();
    void ReadSymbols();
    void ReadVersions();
    void ReadNeededVersions(std::uint64_t address);
    void ReadOwnVersions(std::uint64_t address);
    const char* GetName(std::uint64_t offset, const char* what) const;
    void CheckHash(std::uint64_t address) const;
    void CheckOldHash(std::uint64_t address) const;
};
