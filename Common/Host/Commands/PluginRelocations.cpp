#include "Commands/PluginRelocations.h"

#include "Commands/PluginTables.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace {
enum class Target
{
    Nothing,
    Anything,
    Own,
    OwnFunction,
    ThreadMemory
};

struct RelocationType
{
    unsigned int number;
    Target target;
    unsigned int words = 1; // that are written
};

// What a relocation puts in its place: an address of a symbol, one of the library itself, something of the memory of
// threads. The types that shared libraries have.
#if defined __x86_64__
using Relocation = ElfW(Rela);
constexpr RelocationType relocationTypes_lc[] = {
    {R_X86_64_NONE, Target::Nothing},
    {R_X86_64_64, Target::Anything},
    {R_X86_64_GLOB_DAT, Target::Anything},
    {R_X86_64_JUMP_SLOT, Target::Anything},
    {R_X86_64_RELATIVE, Target::Own},
    {R_X86_64_IRELATIVE, Target::OwnFunction},
    {R_X86_64_DTPMOD64, Target::ThreadMemory},
    {R_X86_64_DTPOFF64, Target::ThreadMemory},
    {R_X86_64_TPOFF64, Target::ThreadMemory},
    {R_X86_64_TLSDESC, Target::ThreadMemory, 2},
};
#elif defined __aarch64__
using Relocation = ElfW(Rela);
constexpr RelocationType relocationTypes_lc[] = {
    {R_AARCH64_NONE, Target::Nothing},
    {R_AARCH64_ABS64, Target::Anything},
    {R_AARCH64_GLOB_DAT, Target::Anything},
    {R_AARCH64_JUMP_SLOT, Target::Anything},
    {R_AARCH64_RELATIVE, Target::Own},
    {R_AARCH64_IRELATIVE, Target::OwnFunction},
    {R_AARCH64_TLS_DTPMOD, Target::ThreadMemory},
    {R_AARCH64_TLS_DTPREL, Target::ThreadMemory},
    {R_AARCH64_TLS_TPREL, Target::ThreadMemory},
    {R_AARCH64_TLSDESC, Target::ThreadMemory, 2},
};
#elif defined __arm__
using Relocation = ElfW(Rel);
constexpr RelocationType relocationTypes_lc[] = {
    {R_ARM_NONE, Target::Nothing},
    {R_ARM_ABS32, Target::Anything},
    {R_ARM_GLOB_DAT, Target::Anything},
    {R_ARM_JUMP_SLOT, Target::Anything},
    {R_ARM_RELATIVE, Target::Own},
    {R_ARM_IRELATIVE, Target::OwnFunction},
    {R_ARM_TLS_DTPMOD32, Target::ThreadMemory},
    {R_ARM_TLS_DTPOFF32, Target::ThreadMemory},
    {R_ARM_TLS_TPOFF32, Target::ThreadMemory},
    {R_ARM_TLS_DESC, Target::ThreadMemory, 2},
};
#endif

/// What the dynamic section says about relocations, by the kind of the processor.
struct RelocationTags
{
    unsigned int table, size, entrySize, relativeCount;
};
constexpr bool hasAddends = sizeof(Relocation) == sizeof(ElfW(Rela));
constexpr RelocationTags tags_lc = hasAddends ? RelocationTags{DT_RELA, DT_RELASZ, DT_RELAENT, DT_RELACOUNT}
                                              : RelocationTags{DT_REL, DT_RELSZ, DT_RELENT, DT_RELCOUNT};

constexpr std::uint64_t word = sizeof(ElfW(Addr));

unsigned int GetType(const Relocation& relocation)
{
    return static_cast<unsigned int>(word == 8 ? ELF64_R_TYPE(relocation.r_info) : ELF32_R_TYPE(relocation.r_info));
}

std::uint64_t GetSymbol(const Relocation& relocation)
{
    return word == 8 ? ELF64_R_SYM(std::uint64_t{relocation.r_info}) : ELF32_R_SYM(relocation.r_info);
}

[[noreturn]] void Fail(const Relocation& relocation, const std::string& fault)
{
    FailPlugin("the relocation of " + Hexadecimal(relocation.r_offset) + fault);
}

const RelocationType& FindType(const Relocation& relocation)
{
    const auto found = std::ranges::find(relocationTypes_lc, GetType(relocation), &RelocationType::number);
    if (found == std::end(relocationTypes_lc))
        Fail(relocation, " has the unknown type " + std::to_string(GetType(relocation)));
    return *found;
}

std::vector<Relocation> ReadTable(
    const PluginTables& tables, const char* what, std::uint64_t address, std::uint64_t size)
{
    if (size % sizeof(Relocation) != 0)
        FailPlugin(std::string(what) + " has a part of an entry");
    return tables.GetSegments().Read<Relocation>(what, address, size / sizeof(Relocation));
}

std::vector<Relocation> ReadRelocations(const PluginTables& tables)
{
    std::vector<Relocation> relocations;
    if (const auto table = tables.Find(tags_lc.table)) {
        constexpr const char* what = "the table of relocations";
        if (tables.Get(tags_lc.entrySize, what) != sizeof(Relocation))
            FailPlugin("wrong size of the entries of the table of relocations");
        relocations = ReadTable(tables, what, *table, tables.Get(tags_lc.size, what));
    }
    const std::uint64_t relative = tables.Find(tags_lc.relativeCount).value_or(0);
    const auto isRelative = [](const Relocation& relocation) { return FindType(relocation).target == Target::Own; };
    if (relative > relocations.size() ||
        !std::all_of(relocations.begin(), relocations.begin() + static_cast<std::ptrdiff_t>(relative), isRelative))
        FailPlugin("wrong number of relative relocations");
    if (tables.Find(DT_PLTREL).value_or(tags_lc.table) != tags_lc.table)
        FailPlugin("wrong kind of the relocations of functions");
    if (tables.Find(DT_JMPREL) || tables.Find(DT_PLTREL) || tables.Find(DT_PLTRELSZ)) {
        constexpr const char* what = "the table of the relocations of functions";
        tables.Get(DT_PLTREL, what);
        const auto more = ReadTable(tables, what, tables.Get(DT_JMPREL, what), tables.Get(DT_PLTRELSZ, what));
        relocations.insert(relocations.end(), more.begin(), more.end());
    }
    return relocations;
}

/// Where the relocation is to point to, by the addresses of the file; without an addend it says so in its place.
template <typename Entry>
std::uint64_t GetOwnAddress(const PluginTables& tables, const Entry& relocation)
{
    if constexpr (hasAddends)
        return static_cast<std::uint64_t>(relocation.r_addend);
    else if (tables.GetSegments().CountBytesFrom(relocation.r_offset) < word)
        return 0;
    else
        return tables.GetSegments().template Read<ElfW(Addr)>("a relocated word", relocation.r_offset, 1).front();
}

/// Checks what the relocation puts in its place.
void CheckTarget(const PluginTables& tables, const Relocation& relocation, Target target)
{
    const PluginSegments& segments = tables.GetSegments();
    const std::uint64_t index = GetSymbol(relocation);
    const ElfW(Sym)* const symbol = index == 0 ? nullptr : &tables.CheckSymbol(index);
    const auto pointsTo = [&](std::uint64_t size, unsigned int flags) {
        return segments.Holds(GetOwnAddress(tables, relocation), size, flags);
    };
    if (target == Target::Own && !pointsTo(0, 0))
        Fail(relocation, " points to no loaded segment");
    if (target == Target::OwnFunction && !pointsTo(1, PF_X))
        Fail(relocation, " points to no code");
    const bool isOwn = !symbol || symbol->st_shndx != SHN_UNDEF;
    if (target == Target::ThreadMemory &&
        ((symbol && ELF32_ST_TYPE(symbol->st_info) != STT_TLS) || (isOwn && segments.GetThreadSize() == 0)))
        Fail(relocation, " asks for memory of threads that is not there");
}

bool ChangesCode(const PluginTables& tables)
{
    return tables.Find(DT_TEXTREL) || (tables.Find(DT_FLAGS).value_or(0) & DF_TEXTREL) != 0;
}

void CheckRelocation(const PluginTables& tables, const Relocation& relocation)
{
    const PluginSegments& segments = tables.GetSegments();
    const RelocationType& type = FindType(relocation);
    if (type.target == Target::Nothing)
        return;
    const std::uint64_t size = type.words * word;
    if (!segments.Holds(relocation.r_offset, size, PF_W) &&
        !(ChangesCode(tables) && segments.Holds(relocation.r_offset, size, 0)))
        Fail(relocation, " is in no segment that can be written");
    const GElf_Phdr& dynamic = segments.GetDynamic();
    if (relocation.r_offset + size > dynamic.p_vaddr && relocation.r_offset < dynamic.p_vaddr + dynamic.p_memsz)
        Fail(relocation, " is in the dynamic section");
    CheckTarget(tables, relocation, type.target);
}

/// Checks one of the two functions that is called without a table.
void CheckFunction(const PluginTables& tables, std::int64_t tag, const char* what)
{
    const auto address = tables.Find(tag);
    if (address && !tables.GetSegments().Holds(*address, 1, PF_X))
        FailPlugin(std::string(what) + " at " + Hexadecimal(*address) + " is no code");
}

/// Checks a table of functions that are called: each is put in its place by a relocation.
void CheckFunctions(const PluginTables& tables, const std::vector<Relocation>& relocations, std::int64_t tag,
    std::int64_t sizeTag, const char* what)
{
    const auto table = tables.Find(tag);
    if (!table)
        return;
    const PluginSegments& segments = tables.GetSegments();
    const std::uint64_t size = tables.Get(sizeTag, what);
    if (size % word != 0 || !segments.Holds(*table, size, PF_W))
        PluginSegments::FailAt(what, *table);
    std::set<std::uint64_t> relocated;
    for (const Relocation& relocation : relocations) {
        if (relocation.r_offset < *table || relocation.r_offset - *table >= size)
            continue;
        if (FindType(relocation).target == Target::Own && !segments.Holds(GetOwnAddress(tables, relocation), 1, PF_X))
            Fail(relocation, " points to no code");
        relocated.insert(relocation.r_offset);
    }
    if (relocated.size() != size / word && !tables.Find(DT_RELR)) // which has others
        FailPlugin(std::string(what) + " at " + Hexadecimal(*table) + " has an entry without relocation");
}
} // namespace

void CheckPluginRelocations(const PluginTables& tables)
{
    const std::vector<Relocation> relocations = ReadRelocations(tables);
    for (const Relocation& relocation : relocations)
        CheckRelocation(tables, relocation);
    CheckFunction(tables, DT_INIT, "the initialiser");
    CheckFunction(tables, DT_FINI, "the finaliser");
    CheckFunctions(tables, relocations, DT_INIT_ARRAY, DT_INIT_ARRAYSZ, "the table of initialisers");
    CheckFunctions(tables, relocations, DT_FINI_ARRAY, DT_FINI_ARRAYSZ, "the table of finalisers");
}
