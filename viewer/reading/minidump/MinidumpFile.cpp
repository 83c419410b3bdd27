#include "viewer/reading/minidump/MinidumpFile.h"

#include "viewer/forms/TextForms.h"
#include "viewer/forms/Utf8.h"

#include <algorithm>

namespace
{

constexpr std::string_view signature = "MDMP";

enum StreamType : std::uint32_t {
    ThreadListStream = 3,
    ModuleListStream = 4,
    MemoryListStream = 5,
    ExceptionStreamType = 6,
    SystemInfoStream = 7,
    Memory64ListStream = 9,
    RecorderBlocksStream = 0x56520001,
    RecorderFirstBlockStream = 0x56530000
};

/// Goes through the entries of a list that begins with their number. Some writers leave four bytes
/// between the two.
template <class Take>
void ForEach(const std::optional<Bytes>& list, std::size_t entrySize, Take take)
{
    if (!list)
        return;
    const std::uint64_t count = list->At<std::uint32_t>(0);
    const bool hasGap = list->Size() == 8 + count * entrySize;
    const std::uint64_t begin = hasGap ? 8 : 4;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::optional<Bytes> entry = list->Part(begin + i * entrySize, entrySize);
        if (!entry)
            return;
        take(*entry);
    }
}

std::string WithoutFolder(const std::string& path)
{
    return path.substr(path.find_last_of("\\/") + 1);
}

std::string Hexadecimal(std::uint64_t number)
{
    const std::string digits = TextForms::Address(number);
    return digits.substr(std::min(digits.find_first_not_of('0'), digits.size() - 1));
}

} // namespace

bool MinidumpFile::IsOne(std::string_view bytes)
{
    return bytes.substr(0, signature.size()) == signature;
}

MinidumpFile::MinidumpFile(std::string_view file) : file(file) {}

std::optional<Bytes> MinidumpFile::Stream(std::uint32_t type) const
{
    const std::uint64_t count = file.At<std::uint32_t>(8);
    const std::uint64_t directory = file.At<std::uint32_t>(12);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::optional<Bytes> entry = file.Part(directory + i * 12, 12);
        if (!entry)
            return std::nullopt;
        if (entry->At<std::uint32_t>(0) == type)
            return file.Part(entry->At<std::uint32_t>(8), entry->At<std::uint32_t>(4));
    }
    return std::nullopt;
}

std::string MinidumpFile::Text(std::uint32_t offset) const
{
    const std::optional<Bytes> text =
        file.Part(std::uint64_t(offset) + 4, file.At<std::uint32_t>(offset));
    if (!text)
        return "";
    return Utf8::FromName(Utf8::FromUtf16(std::string_view(text->Data(), text->Size()), false));
}

std::vector<MinidumpFile::Module> MinidumpFile::Modules() const
{
    std::vector<Module> modules;
    ForEach(Stream(ModuleListStream), 108, [&](const Bytes& entry) {
        modules.push_back({entry.At<std::uint64_t>(0), entry.At<std::uint32_t>(8),
                           WithoutFolder(Text(entry.At<std::uint32_t>(20)))});
    });
    return modules;
}

std::optional<MinidumpFile::Exception> MinidumpFile::ExceptionStream() const
{
    const std::optional<Bytes> stream = Stream(ExceptionStreamType);
    if (!stream)
        return std::nullopt;
    return Exception{stream->At<std::uint32_t>(0),
                     stream->At<std::uint32_t>(8),
                     stream->At<std::uint64_t>(24),
                     stream->At<std::uint32_t>(32),
                     {stream->At<std::uint64_t>(40), stream->At<std::uint64_t>(48)}};
}

std::vector<std::uint32_t> MinidumpFile::Threads() const
{
    std::vector<std::uint32_t> threads;
    ForEach(Stream(ThreadListStream), 48,
            [&](const Bytes& entry) { threads.push_back(entry.At<std::uint32_t>(0)); });
    return threads;
}

std::string MinidumpFile::System() const
{
    const std::optional<Bytes> info = Stream(SystemInfoStream);
    if (!info)
        return "";
    const auto number = [&](std::uint64_t offset) {
        return std::to_string(info->At<std::uint32_t>(offset));
    };
    return "Windows " + number(8) + "." + number(12) + "." + number(16) + ", " +
           TextForms::Count(info->At<std::uint8_t>(6), "processor");
}

AddressSpace MinidumpFile::Memory() const
{
    std::vector<AddressSpace::Range> ranges;
    AddRecorderBlocks(ranges);
    AddMemory64List(ranges);
    AddMemoryList(ranges);
    return AddressSpace(std::move(ranges));
}

void MinidumpFile::AddRecorderBlocks(std::vector<AddressSpace::Range>& ranges) const
{
    const std::optional<Bytes> list = Stream(RecorderBlocksStream);
    for (std::uint64_t i = 0; list && i < list->Size() / 16; ++i) {
        const std::optional<Bytes> bytes =
            Stream(RecorderFirstBlockStream + static_cast<std::uint32_t>(i));
        if (bytes && bytes->Size() == list->At<std::uint64_t>(i * 16 + 8))
            ranges.push_back({list->At<std::uint64_t>(i * 16), *bytes});
    }
}

void MinidumpFile::AddMemoryList(std::vector<AddressSpace::Range>& ranges) const
{
    ForEach(Stream(MemoryListStream), 16, [&](const Bytes& entry) {
        const std::optional<Bytes> bytes =
            file.Part(entry.At<std::uint32_t>(12), entry.At<std::uint32_t>(8));
        if (bytes)
            ranges.push_back({entry.At<std::uint64_t>(0), *bytes});
    });
}

void MinidumpFile::AddMemory64List(std::vector<AddressSpace::Range>& ranges) const
{
    const std::optional<Bytes> list = Stream(Memory64ListStream);
    if (!list)
        return;
    const std::uint64_t count = list->At<std::uint64_t>(0);
    std::uint64_t offset = list->At<std::uint64_t>(8);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::optional<Bytes> entry = list->Part(16 + i * 16, 16);
        if (!entry)
            return;
        const std::uint64_t size = entry->At<std::uint64_t>(8);
        const std::optional<Bytes> bytes = file.Part(offset, size);
        if (!bytes)
            return;
        ranges.push_back({entry->At<std::uint64_t>(0), *bytes});
        offset += size;
    }
}

std::string MinidumpFile::Place(std::uint64_t address, const std::vector<Module>& modules)
{
    for (const Module& module : modules) {
        if (module.Holds(address))
            return module.name + "+" + Hexadecimal(address - module.begin);
    }
    return Hexadecimal(address);
}
