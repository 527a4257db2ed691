// Damaged plug-ins: each is refused with what is wrong, and none ends the process.

#include "Commands/PluginFile.h"
#include "Commands/PluginLoader.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryFolder.h"
#include "Text/HostError.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <link.h>
#include <random>
#include <regex>
#include <span>

namespace {
#ifdef __arm__
using Relocation = ElfW(Rel);
constexpr std::int64_t relocations_lc = DT_REL, relocationSize_lc = DT_RELSZ, relativeCount_lc = DT_RELCOUNT;
constexpr std::int64_t relocationEntry_lc = DT_RELENT;
#else
using Relocation = ElfW(Rela);
constexpr std::int64_t relocations_lc = DT_RELA, relocationSize_lc = DT_RELASZ, relativeCount_lc = DT_RELACOUNT;
constexpr std::int64_t relocationEntry_lc = DT_RELAENT;
#endif

/// The bytes of a plug-in, to be damaged.
struct Image
{
    std::string bytes;

    template <typename T>
    T& At(std::size_t offset)
    {
        return *reinterpret_cast<T*>(bytes.data() + offset);
    }
    ElfW(Ehdr) & Header() { return At<ElfW(Ehdr)>(0); }
    ElfW(Phdr) & Segment(std::size_t index) { return At<ElfW(Phdr)>(Header().e_phoff + index * sizeof(ElfW(Phdr))); }
    /// The first segment of the type whose flags have these.
    ElfW(Phdr) & Find(unsigned int type, unsigned int flags = 0)
    {
        for (std::size_t index = 0; index < Header().e_phnum; ++index) {
            if (Segment(index).p_type == type && (Segment(index).p_flags & flags) == flags)
                return Segment(index);
        }
        throw std::runtime_error("no such segment");
    }
    ElfW(Dyn) & Entry(std::int64_t tag)
    {
        ElfW(Dyn)* entry = &At<ElfW(Dyn)>(Find(PT_DYNAMIC).p_offset);
        while (entry->d_tag != tag && entry->d_tag != DT_NULL)
            ++entry;
        return *entry;
    }
    auto& Value(std::int64_t tag) { return Entry(tag).d_un.d_val; }
    template <typename T>
    T& Table(std::int64_t tag, std::size_t index = 0)
    {
        return At<T>(Value(tag) + index * sizeof(T)); // of the first segment, where addresses are offsets
    }
    /// That of the first function which is bound.
    ElfW(Sym) & FirstSymbol()
    {
        constexpr unsigned int shift = sizeof(ElfW(Addr)) == 8 ? 32 : 8;
        return Table<ElfW(Sym)>(DT_SYMTAB, Table<Relocation>(DT_JMPREL).r_info >> shift);
    }
    Relocation& FirstRelocation() { return Table<Relocation>(relocations_lc); }
};

const Image& GetPlugin()
{
    static const Image image{TemporaryFolder::ReadFile(PLUGIN_FILE)};
    return image;
}

/// The fault, with "#" for each number.
std::string FindFault(const Image& image)
{
    return std::regex_replace(
        PluginFile(std::string_view(image.bytes)).FindFault(), std::regex("0x[0-9a-f]+|[0-9]+"), "#");
}

struct Damage
{
    const char* fault;
    void (*make)(Image&);
};

constexpr ElfW(Addr) nowhere = 0x7ff0000;

void ExpectFaults(std::span<const Damage> damages)
{
    for (const Damage& damage : damages) {
        Image image = GetPlugin();
        damage.make(image);
        EXPECT_EQ(FindFault(image), damage.fault);
    }
}

/// Whether the plug-in is refused, with nothing worse, by a process that has loaded the others.
bool IsRefused(const std::string& file, const std::vector<std::string>& others)
{
    return ChildProcess([&] {
        for (const std::string& other : others)
            PluginLoader::Load(other);
        try {
            PluginLoader::Load(file);
        } catch (const HostException&) {
            return true;
        }
        return false;
    }).Wait();
}
} // namespace

TEST(PluginFileTest, TellsWhatIsWrongInTheHeaders)
{
    const Damage damages[] = {
        {"", [](Image&) {}},
        {"file too short", [](Image& image) { image.bytes.resize(40); }},
        {"invalid ELF header", [](Image& image) { image.bytes[0] = 'x'; }},
        {"made for another kind of processor", [](Image& image) { image.bytes[EI_DATA] = ELFDATA2MSB; }},
        {"made for another processor, number #", [](Image& image) { image.Header().e_machine = EM_SPARC; }},
        {"not a shared library", [](Image& image) { image.Header().e_type = ET_REL; }},
        {"wrong size of the entries of the program header", [](Image& image) { ++image.Header().e_phentsize; }},
        {"cut short: the program header stands at byte #, the file has #",
            [](Image& image) { image.Header().e_phoff = nowhere; }},
        {"cut short: the table of sections stands at byte #, the file has #",
            [](Image& image) { image.bytes.resize(image.bytes.size() - 1); }},
        {"cut short: segment # has # bytes from byte #, the file has #",
            [](Image& image) { image.Find(PT_LOAD, PF_W).p_filesz = image.Find(PT_LOAD, PF_W).p_memsz = nowhere; }},
        {"segment # is larger in the file than in memory", [](Image& image) { image.Find(PT_LOAD).p_memsz = 8; }},
        {"segment # is smaller in the file than in memory, and cannot be written",
            [](Image& image) { --image.Find(PT_LOAD, PF_X).p_filesz; }},
        {"segment # goes beyond the memory", [](Image& image) { image.Find(PT_LOAD, PF_W).p_memsz = ~ElfW(Addr){0}; }},
        {"segment # is not aligned", [](Image& image) { image.Find(PT_LOAD).p_align = 0; }},
        {"segment # is not aligned", [](Image& image) { image.Find(PT_LOAD, PF_W).p_vaddr += 8; }},
        {"segment # cannot be read", [](Image& image) { image.Find(PT_LOAD, PF_X).p_flags = PF_X; }},
        {"segment # begins before the end of the one before it",
            [](Image& image) { image.Find(PT_LOAD, PF_W).p_vaddr %= image.Find(PT_LOAD, PF_W).p_align; }},
        {"segment # begins before the end of the one before it",
            [](Image& image) { image.Find(PT_LOAD, PF_W).p_offset -= image.Find(PT_LOAD, PF_W).p_align; }},
        {"it has no dynamic section", [](Image& image) { image.Find(PT_DYNAMIC).p_type = PT_NULL; }},
        {"segment # is a second dynamic section", [](Image& image) { image.Find(PT_GNU_STACK).p_type = PT_DYNAMIC; }},
        {"segment #, the dynamic section, is in no loaded segment",
            [](Image& image) { image.Find(PT_DYNAMIC).p_vaddr = nowhere; }},
        {"segment #, the memory of threads, has an impossible size",
            [](Image& image) { image.Find(PT_TLS).p_align = 0; }},
        {"segment #, the memory of threads, is in no loaded segment",
            [](Image& image) { image.Find(PT_TLS).p_filesz = image.Find(PT_TLS).p_memsz = 0x800000; }},
        {"segment # is in no segment that can be written", [](Image& image) { image.Find(PT_GNU_RELRO).p_vaddr = 0; }},
        {"segment # is not the program header", [](Image& image) { image.Find(PT_GNU_STACK).p_type = PT_PHDR; }},
        {"segment # has a note that is too long",
            [](Image& image) { image.At<ElfW(Nhdr)>(image.Find(PT_NOTE).p_offset).n_descsz = 0x10000; }},
    };
    ExpectFaults(damages);
}

TEST(PluginFileTest, TellsWhatIsWrongInTheTables)
{
    const Damage damages[] = {
        {"the dynamic section has no end",
            [](Image& image) { image.Find(PT_DYNAMIC).p_memsz = 4 * sizeof(ElfW(Dyn)); }},
        {"the dynamic section lacks an entry for the table of names, number #",
            [](Image& image) { image.Entry(DT_STRTAB).d_tag = DT_DEBUG; }},
        {"the table of names at # is in no loaded segment", [](Image& image) { image.Value(DT_STRTAB) = nowhere; }},
        {"the table of names has no end", [](Image& image) { --image.Value(DT_STRSZ); }},
        {"the dynamic section has a name beyond the table of names, at #",
            [](Image& image) { image.Value(DT_NEEDED) = nowhere; }},
        {"the table of symbols at # is in no loaded segment", [](Image& image) { image.Value(DT_SYMTAB) += 1; }},
        {"wrong size of the entries of the table of symbols", [](Image& image) { ++image.Value(DT_SYMENT); }},
        {"symbol # has a name beyond the table of names", [](Image& image) { image.FirstSymbol().st_name = nowhere; }},
        {"symbol # is beyond the table of symbols",
            [](Image& image) {
                image.Table<Relocation>(DT_JMPREL).r_info |= ElfW(Addr){1} << (sizeof(ElfW(Addr)) * 8 - 2);
            }},
        {"symbol # has an unknown version",
            [](Image& image) { std::fill_n(&image.Table<ElfW(Half)>(DT_VERSYM), 100, ElfW(Half){99}); }},
        {"the dynamic section lacks a table of versions",
            [](Image& image) { image.Entry(DT_VERSYM).d_tag = DT_DEBUG; }},
        {"versions of a library that is not needed: ",
            [](Image& image) { image.Table<ElfW(Verneed)>(DT_VERNEED).vn_file = 0; }},
        {"a needed version at # is in no loaded segment",
            [](Image& image) { image.Table<ElfW(Verneed)>(DT_VERNEED).vn_next = nowhere; }},
        {"the hash table has a filter of an impossible size",
            [](Image& image) { image.Table<std::uint32_t>(DT_GNU_HASH, 2) = 3; }},
        {"the hash table at # is in no loaded segment",
            [](Image& image) { image.Table<std::uint32_t>(DT_GNU_HASH, 0) = ~0U; }},
        {"the hash table has symbol #, which is none of its own",
            [](Image& image) { image.Table<std::uint32_t>(DT_GNU_HASH, 1) = nowhere; }},
        {"wrong size of the entries of the table of relocations",
            [](Image& image) { ++image.Value(relocationEntry_lc); }},
        {"the table of relocations has a part of an entry", [](Image& image) { ++image.Value(relocationSize_lc); }},
        {"wrong number of relative relocations", [](Image& image) { ++image.Value(relativeCount_lc); }},
        {"wrong kind of the relocations of functions", [](Image& image) { image.Value(DT_PLTREL) = 1; }},
        {"the dynamic section lacks an entry for the table of the relocations of functions, number #",
            [](Image& image) { image.Entry(DT_JMPREL).d_tag = DT_DEBUG; }},
        {"the relocation of # has the unknown type #", [](Image& image) { image.FirstRelocation().r_info = 0xee; }},
        {"the relocation of # is in no segment that can be written",
            [](Image& image) { image.FirstRelocation().r_offset = 64; }},
        {"the relocation of # is in the dynamic section",
            [](Image& image) { image.FirstRelocation().r_offset = image.Find(PT_DYNAMIC).p_vaddr; }},
#ifndef __arm__
        {"the relocation of # points to no loaded segment",
            [](Image& image) { image.FirstRelocation().r_addend = nowhere; }},
#endif
        {"the relocation of # asks for memory of threads that is not there",
            [](Image& image) { image.Find(PT_TLS).p_type = PT_NULL; }},
        {"the initialiser at # is no code", [](Image& image) { image.Value(DT_INIT) = nowhere; }},
        {"the table of initialisers at # is in no loaded segment",
            [](Image& image) { image.Value(DT_INIT_ARRAY) = nowhere; }},
        {"the table of initialisers at # has an entry without relocation",
            [](Image& image) {
                Relocation* relocation = &image.FirstRelocation();
                while (relocation->r_offset != image.Value(DT_INIT_ARRAY))
                    ++relocation;
                relocation->r_offset = image.Find(PT_GNU_RELRO).p_vaddr + 64;
            }},
    };
    ExpectFaults(damages);
}

TEST(PluginFileTest, TheChecksumTellsDamageOfCode)
{
    const TemporaryFolder folder;
    for (const char* file : {PLUGIN_FILE, SCRIPT_TOOLS_FILE}) {
        Image image{TemporaryFolder::ReadFile(file)};
        const ElfW(Phdr) code = image.Find(PT_LOAD, PF_X);
        for (const std::size_t place : {code.p_offset + code.p_filesz / 2, code.p_offset + code.p_filesz - 1}) {
            image.bytes[place] ^= 1;
            EXPECT_EQ(FindFault(image), "code or data do not match the checksum") << file;
            image.bytes[place] ^= 1;
        }
        const std::string stripped = folder.Path("stripped");
        ASSERT_EQ(std::system((STRIP " -o " + stripped + " " + file).c_str()), 0);
        EXPECT_LT(std::filesystem::file_size(stripped), image.bytes.size());
        EXPECT_EQ(PluginFile(stripped).FindFault(), "");
        EXPECT_EQ(PluginFile(stripped).CalculateChecksum(), PluginFile(std::string(file)).CalculateChecksum());
    }
}

TEST(PluginFileTest, WhatIsCutShortIsRefused)
{
    const TemporaryFolder folder;
    const std::pair<const char*, std::vector<std::string>> plugins[] = {
        {PLUGIN_FILE, {}}, {SCRIPT_TOOLS_FILE, {PLUGIN_FILE}}, {SECOND_PLUGIN_FILE, {PLUGIN_FILE}}};
    for (const auto& [file, others] : plugins) {
        const std::string copy = folder.Path("copy");
        std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
        const std::uintmax_t size = std::filesystem::file_size(copy);
        for (std::uintmax_t part = 20; part-- > 0;) {
            std::filesystem::resize_file(copy, size * part / 20);
            EXPECT_TRUE(IsRefused(copy, others)) << file << " cut at " << size * part / 20;
        }
    }
}

TEST(PluginFileTest, ADamagedByteEndsNoProcess)
{
    const TemporaryFolder folder;
    Image image = GetPlugin();
    const auto begin = image.Header().e_phoff; // what stands before it is not in the checksum
    const auto range = [](const ElfW(Phdr) & segment) {
        return std::pair<std::size_t, std::size_t>(segment.p_offset, segment.p_offset + segment.p_filesz);
    };
    const std::pair<std::size_t, std::size_t> places[] = {
        {begin, begin + image.Header().e_phnum * sizeof(ElfW(Phdr))},
        {begin, image.Find(PT_LOAD).p_filesz},
        range(image.Find(PT_DYNAMIC)),
        range(image.Find(PT_LOAD, PF_X)),
        range(image.Find(PT_LOAD, PF_W)),
    };
    std::mt19937 random(1); // the same damage each time
    for (const auto& [first, end] : places) {
        for (int count = 0; count < 40; ++count) {
            const std::size_t place = first + random() % (end - first);
            const auto change = static_cast<char>(1U << random() % 8);
            image.bytes[place] = static_cast<char>(image.bytes[place] ^ change);
            EXPECT_TRUE(IsRefused(folder.Write("copy", image.bytes), {}))
                << "bits " << int{change} << " of byte " << place;
            image.bytes[place] = static_cast<char>(image.bytes[place] ^ change);
        }
    }
    EXPECT_FALSE(IsRefused(folder.Write("copy", image.bytes), {}));
}
