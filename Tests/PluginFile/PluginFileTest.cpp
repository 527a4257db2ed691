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

namespace {
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
    constexpr ElfW(Addr) nowhere = 0x7ff0000;
    const struct
    {
        const char* fault;
        void (*make)(Image&);
    } damages[] = {
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
        {"the dynamic section is in no segment", [](Image& image) { image.Find(PT_DYNAMIC).p_type = PT_NULL; }},
        {"the dynamic section is in no segment", [](Image& image) { image.Find(PT_DYNAMIC).p_vaddr = nowhere; }},
        {"code or data do not match the checksum", [](Image& image) { image.Find(PT_TLS).p_align = 0; }},
        {"code or data do not match the checksum", [](Image& image) { --image.Header().e_phnum; }},
        {"the table of sections is damaged",
            [](Image& image) { image.bytes[image.bytes.find(std::string(".ov.checksum\0", 13)) + 4] = 'k'; }},
    };
    for (const auto& [fault, make] : damages) {
        Image image = GetPlugin();
        make(image);
        EXPECT_EQ(FindFault(image), fault);
    }
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
            std::filesystem::resize_file(copy, size);
            EXPECT_TRUE(IsRefused(copy, others)) << file << " with zeros from " << size * part / 20;
        }
    }
}

TEST(PluginFileTest, ADamagedByteEndsNoProcess)
{
    const TemporaryFolder folder;
    Image image = GetPlugin();
    const auto begin = image.Header().e_phoff;
    const auto range = [](const ElfW(Phdr) & segment) {
        return std::pair<std::size_t, std::size_t>(segment.p_offset, segment.p_offset + segment.p_filesz);
    };
    const std::pair<std::size_t, std::size_t> places[] = {
        {0, offsetof(ElfW(Ehdr), e_shoff)},
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
