#include "Commands/PluginTables.h"

#include <algorithm>
#include <cstring>
#include <span>

static constexpr unsigned int versionMask = 0x7fff; // without the mark of a hidden one

PluginTables::PluginTables(const PluginSegments& segments) : segments(segments)
{
    ReadEntries();
    ReadNames();
    ReadSymbols();
    ReadVersions();
    if (const auto hash = Find(DT_GNU_HASH))
        CheckHash(*hash);
    else if (const auto oldHash = Find(DT_HASH))
        CheckOldHash(*oldHash);
}

std::optional<std::uint64_t> PluginTables::Find(std::int64_t tag) const
{
    // The last one counts.
    const auto found =
        std::find_if(entries.rbegin(), entries.rend(), [&](const auto& entry) { return entry.d_tag == tag; });
    return found == entries.rend() ? std::nullopt : std::optional<std::uint64_t>(found->d_un.d_val);
}

std::uint64_t PluginTables::Get(std::int64_t tag, const char* what) const
{
    const auto value = Find(tag);
    if (!value)
        FailPlugin("the dynamic section lacks an entry for " + std::string(what) + ", number " + std::to_string(tag));
    return *value;
}

void PluginTables::ReadEntries()
{
    const GElf_Phdr& dynamic = segments.GetDynamic();
    const std::uint64_t size = std::min<std::uint64_t>(dynamic.p_memsz, segments.CountBytesFrom(dynamic.p_vaddr));
    entries = segments.Read<ElfW(Dyn)>("the dynamic section", dynamic.p_vaddr, size / sizeof(ElfW(Dyn)));
    const auto end = std::ranges::find(entries, DT_NULL, &ElfW(Dyn)::d_tag);
    if (end == entries.end())
        FailPlugin("the dynamic section has no end");
    entries.erase(end, entries.end());
}

void PluginTables::ReadNames()
{
    constexpr const char* what = "the table of names";
    names = segments.Read<char>(what, Get(DT_STRTAB, what), Get(DT_STRSZ, what));
    if (names.empty() || names.back() != '\0')
        FailPlugin("the table of names has no end");
    for (const auto& entry : entries) {
        for (const std::int64_t tag : {DT_NEEDED, DT_SONAME, DT_RPATH, DT_RUNPATH, DT_AUXILIARY, DT_FILTER}) {
            if (entry.d_tag == tag)
                GetName(entry.d_un.d_val, "the dynamic section");
        }
    }
}

/// The name, which `what` has; throws PluginFault.
const char* PluginTables::GetName(std::uint64_t offset, const char* what) const
{
    if (offset >= names.size())
        FailPlugin(std::string(what) + " has a name beyond the table of names, at " + std::to_string(offset));
    return &names[static_cast<std::size_t>(offset)];
}

void PluginTables::ReadSymbols()
{
    constexpr const char* what = "the table of symbols";
    const std::uint64_t address = Get(DT_SYMTAB, what);
    if (Get(DT_SYMENT, what) != sizeof(ElfW(Sym)))
        FailPlugin("wrong size of the entries of the table of symbols");
    std::uint64_t size = segments.CountBytesFrom(address);
    if (const std::uint64_t next = Get(DT_STRTAB, what); next > address) // which usually comes next
        size = std::min(size, next - address);
    symbols = segments.Read<ElfW(Sym)>(what, address, size / sizeof(ElfW(Sym)));
}

const ElfW(Sym) & PluginTables::CheckSymbol(std::uint64_t number) const
{
    const auto require = [&](bool holds, const char* fault) {
        if (!holds)
            FailPlugin("symbol " + std::to_string(number) + fault);
    };
    require(number < symbols.size(), " is beyond the table of symbols");
    const auto index = static_cast<std::size_t>(number);
    const ElfW(Sym)& symbol = symbols[index];
    require(symbol.st_name < names.size(), " has a name beyond the table of names");
    require(versions.empty() || (index < versions.size() && (versions[index] & versionMask) <= lastVersion),
        " has an unknown version");
    if (symbol.st_shndx == SHN_UNDEF || symbol.st_shndx == SHN_ABS)
        return symbol;
    switch (ELF32_ST_TYPE(symbol.st_info)) {
    case STT_TLS: require(symbol.st_value < segments.GetThreadSize(), " is beyond the memory of threads"); break;
    case STT_FUNC:
    case STT_GNU_IFUNC: require(segments.Holds(symbol.st_value, 1, PF_X), ", a function, is no code"); break;
    default: require(segments.Holds(symbol.st_value, 0, 0), " is in no loaded segment");
    }
    return symbol;
}

void PluginTables::ReadVersions()
{
    const auto needed = Find(DT_VERNEED);
    const auto own = Find(DT_VERDEF);
    const auto ofSymbols = Find(DT_VERSYM);
    if ((needed || own) != ofSymbols.has_value())
        FailPlugin("the dynamic section lacks a table of versions");
    if (needed)
        ReadNeededVersions(*needed);
    if (own)
        ReadOwnVersions(*own);
    if (ofSymbols) {
        const std::uint64_t count = segments.CountBytesFrom(*ofSymbols) / sizeof(ElfW(Half));
        versions = segments.Read<ElfW(Half)>(
            "the table of versions", *ofSymbols, std::min<std::uint64_t>(count, symbols.size()));
        if (versions.empty())
            PluginSegments::FailAt("the table of versions", *ofSymbols);
    }
}

/// The library that a version is asked of is one that the plug-in needs, or the loader ends the process.
void PluginTables::ReadNeededVersions(std::uint64_t address)
{
    constexpr const char* what = "a needed version";
    const auto isNeeded = [&](const char* name) {
        return std::ranges::any_of(entries, [&](const auto& entry) {
            return entry.d_tag == DT_NEEDED && std::strcmp(GetName(entry.d_un.d_val, what), name) == 0;
        });
    };
    unsigned int count = 0;
    for (std::uint64_t next = 1; next != 0; address += next) {
        const auto library = segments.Read<ElfW(Verneed)>(what, address, 1).front();
        const char* const name = GetName(library.vn_file, what);
        if (!isNeeded(name))
            FailPlugin(std::string("versions of a library that is not needed: ") + name);
        std::uint64_t version = address + library.vn_aux;
        for (std::uint64_t nextVersion = 1; nextVersion != 0; version += nextVersion) {
            const auto entry = segments.Read<ElfW(Vernaux)>(what, version, 1).front();
            GetName(entry.vna_name, what);
            lastVersion = std::max(lastVersion, entry.vna_other & versionMask);
            if (++count > versionMask)
                FailPlugin("too many needed versions");
            nextVersion = entry.vna_next;
        }
        next = library.vn_next;
    }
}

void PluginTables::ReadOwnVersions(std::uint64_t address)
{
    constexpr const char* what = "an own version";
    for (std::uint64_t next = 1; next != 0; address += next) {
        const auto version = segments.Read<ElfW(Verdef)>(what, address, 1).front();
        const auto name = segments.Read<ElfW(Verdaux)>(what, address + version.vd_aux, 1).front();
        GetName(name.vda_name, what);
        lastVersion = std::max(lastVersion, version.vd_ndx & versionMask);
        next = version.vd_next;
    }
}

void PluginTables::CheckHash(std::uint64_t address) const
{
    constexpr const char* what = "the hash table";
    enum
    {
        BucketCount,
        FirstSymbol,
        FilterWords,
        Shift,
        Count
    };
    const auto header = segments.Read<std::uint32_t>(what, address, Count);
    const std::uint64_t filterWords = header[FilterWords];
    if (filterWords == 0 || (filterWords & (filterWords - 1)) != 0)
        FailPlugin("the hash table has a filter of an impossible size");
    const std::uint64_t bucketsAddress = address + Count * sizeof header[0] + filterWords * sizeof(ElfW(Addr));
    const auto buckets = segments.Read<std::uint32_t>(what, bucketsAddress, header[BucketCount]);
    std::uint32_t last = 0;
    for (const std::uint32_t bucket : buckets) {
        if (bucket != 0 && bucket < header[FirstSymbol])
            FailPlugin("the hash table has symbol " + std::to_string(bucket) + ", which is none of its own");
        last = std::max(last, bucket);
    }
    if (last == 0)
        return;
    // The hash values of the symbols, chain after chain; the lowest bit ends one.
    if (last >= symbols.size())
        FailPlugin("the hash table has symbol " + std::to_string(last) + ", which is beyond the table of symbols");
    const std::uint64_t hashesAddress = bucketsAddress + buckets.size() * sizeof buckets[0];
    const std::uint64_t count = std::min<std::uint64_t>(
        symbols.size() - header[FirstSymbol], segments.CountBytesFrom(hashesAddress) / sizeof buckets[0]);
    const auto hashes = segments.Read<std::uint32_t>(what, hashesAddress, count);
    std::size_t end = last - header[FirstSymbol];
    while (end < hashes.size() && (hashes[end] & 1) == 0)
        ++end;
    if (end >= hashes.size())
        FailPlugin("the hash table has no end");
    for (std::uint64_t index = header[FirstSymbol]; index <= header[FirstSymbol] + end; ++index)
        CheckSymbol(index);
}

void PluginTables::CheckOldHash(std::uint64_t address) const
{
    constexpr const char* what = "the hash table";
    const auto counts = segments.Read<std::uint32_t>(what, address, 2);
    const auto table = segments.Read<std::uint32_t>(what, address, std::uint64_t{2} + counts[0] + counts[1]);
    const auto buckets = std::span(table).subspan(2, counts[0]);
    const auto chain = std::span(table).subspan(2 + buckets.size());
    std::uint32_t steps = 0;
    for (const std::uint32_t bucket : buckets) {
        for (std::uint32_t index = bucket; index != STN_UNDEF; index = chain[index]) {
            if (index >= chain.size() || ++steps > chain.size())
                FailPlugin("the hash table has a chain without end");
            CheckSymbol(index);
        }
    }
}
