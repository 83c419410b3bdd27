#include "diagnostics/CrashDump.h"

#include "diagnostics/KLogger.h"
#include "diagnostics/RecorderDescription.h"
#include "diagnostics/StructuredGuard.h"
#include "tests/support/Allocations.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/ProcessHandles.h"

#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

#include <windows.h>

#include <dbghelp.h>

namespace
{

const wchar_t prefix[] = L"C:\\Temp\\crash test";

std::string ReadAndDelete(const wchar_t* path)
{
    const HANDLE file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    std::string content(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, &content[0], static_cast<DWORD>(content.size()), &read, nullptr);
    CloseHandle(file);
    return content;
}

/// A reader of minidumps that knows of a recorder what its description says, and nothing else.
struct Reader {
    explicit Reader(const std::string& dump)
    {
        const auto header = At<MINIDUMP_HEADER>(dump, 0);
        for (ULONG i = 0; i < header.NumberOfStreams; ++i) {
            const auto entry = At<MINIDUMP_DIRECTORY>(dump, header.StreamDirectoryRva + 12 * i);
            streams[entry.StreamType] = dump.substr(entry.Location.Rva, entry.Location.DataSize);
        }
        const std::string& list = streams[RecorderBlocksStream];
        for (std::uint32_t i = 0; i < list.size() / sizeof(RecorderBlock); ++i) {
            const std::string& bytes = streams[RecorderFirstBlockStream + i];
            blocks[At<RecorderBlock>(list, i * sizeof(RecorderBlock)).address] = &bytes;
            if (bytes.compare(0, 16, "Varek recorder\x1A", 16) == 0)
                told = At<RecorderDescription>(bytes, 0);
        }
        core = reinterpret_cast<std::uintptr_t>(told.core);
    }

    std::string Memory(std::uint64_t address, std::size_t size) const
    {
        const auto block = std::prev(blocks.upper_bound(address));
        return block->second->substr(address - block->first, size);
    }

    template <class Value>
    Value Read(std::uint64_t address) const
    {
        return At<Value>(Memory(address, sizeof(Value)), 0);
    }

    std::string Name(std::uint32_t table, std::uint64_t key) const
    {
        auto name = Read<std::uint64_t>(core + table + told.newestName);
        while (name && Read<std::uint64_t>(name + told.nameKey) != key)
            name = Read<std::uint64_t>(name + told.olderName);
        return name ? Memory(name + told.nameText, Read<std::uint64_t>(name + told.nameLength))
                    : "";
    }

    template <class Value>
    static Value At(const std::string& bytes, std::size_t offset)
    {
        Value value = {};
        std::memcpy(&value, bytes.substr(offset, sizeof value).data(), sizeof value);
        return value;
    }

    std::map<std::uint32_t, std::string> streams;
    std::map<std::uint64_t, const std::string*> blocks;
    RecorderDescription told = {};
    std::uint64_t core;
};

/// Faults, and has `crashDump` write in the filter, as a host does, with no memory left.
void Fault(CrashDump& crashDump)
{
    const GuardedBody fault = [](void*) { *reinterpret_cast<volatile int*>(0x1234) = 1; };
    const GuardFilter filter = [](void* context, _EXCEPTION_POINTERS* pointers) -> long {
        ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
        EXPECT_TRUE(static_cast<CrashDump*>(context)->WriteMinidump(pointers));
        EXPECT_FALSE(DisarmAllocationFailure());
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(fault, filter, &crashDump));
}

} // namespace

TEST(CrashDump, TextsHaveNamesOfTheirOwnAndWhatCannotBeMadeIsAnsweredFalse)
{
    EXPECT_THROW(CrashDump(std::wstring(901, L'x').c_str()), std::length_error);
    CreateDirectoryA("C:\\Temp", nullptr);
    CrashDump crashDump(prefix), nowhere(L"C:\\no such folder\\x");
    EXPECT_STREQ(L"", crashDump.GetPath());
    const ExpectSameHandles handles;
    std::map<std::wstring, int> paths;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(crashDump.WriteText());
        ++paths[crashDump.GetPath()];
    }
    EXPECT_EQ(3u, paths.size());
    for (const auto& path : paths) {
        EXPECT_EQ(0u, path.first.find(prefix + std::wstring(L"-2")));
        EXPECT_EQ(0u, ReadAndDelete(path.first.c_str()).find("%% Reference time: "));
    }
    EXPECT_FALSE(nowhere.WriteText() || nowhere.WriteMinidump(nullptr));
}

TEST(CrashDump, MinidumpOfAFaultHoldsTheRecorderAsItsDescriptionSays)
{
    LeakCheck::Skip(); // the block of the long name stays
    KLogger& log = *KLogger::GetModuleLogger();
    log.SetIdName(7, "Pump");
    log.SetClassStateName(7, 3, std::string(0x5000, 'x')); // more than a block
    log.SetObjectName(&log, "the pump");
    log.SetThreadName("tester");
    for (std::uint32_t i = 0; i < 0x20000 + 10; ++i)
        log.AddRecord(-25, 2, i, 7, 7, &log);
    CrashDump crashDump(prefix);
    Fault(crashDump);
    const std::string dump = ReadAndDelete(crashDump.GetPath());
    EXPECT_GT(6500000u, dump.size());

    Reader reader(dump);
    const RecorderDescription& told = reader.told;
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION, Reader::At<DWORD>(reader.streams[ExceptionStream], 8));
    EXPECT_FALSE(reader.streams[ThreadListStream].empty());
    EXPECT_FALSE(reader.streams[ModuleListStream].empty());
    ASSERT_EQ(&log, told.core);
    const auto capacity = reader.Read<std::uint32_t>(reader.core + told.capacity);
    const auto slot = reader.Read<std::uint32_t>(reader.core + told.writeIndex) % capacity;
    const auto ring = reader.Read<std::uint64_t>(reader.core + told.records);
    const std::size_t size = std::size_t{capacity} * told.recordSize;
    EXPECT_EQ(0,
              std::memcmp(reinterpret_cast<void*>(ring), reader.Memory(ring, size).data(), size));
    EXPECT_EQ(0x20000u + 9,
              reader.Read<std::uint32_t>(ring + slot * told.recordSize + told.param2));
    EXPECT_EQ("Pump", reader.Name(told.idNames, 7));
    EXPECT_EQ(std::string(0x5000, 'x'), reader.Name(told.stateNames, 703));
    EXPECT_EQ("the pump", reader.Name(told.objectNames, reader.core));
    EXPECT_EQ("tester", reader.Name(told.threadNames, GetCurrentThreadId()));
    EXPECT_EQ("Scope_push", reader.Name(told.kindNames, 0xFFFFFFF9));
}
