#include "diagnostics/CrashDump.h"

#include "diagnostics/KLogger.h"
#include "diagnostics/RecorderDescription.h"
#include "diagnostics/StructuredGuard.h"
#include "tests/support/Allocations.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/ProcessHandles.h"

#include <cstring>
#include <fstream>
#include <iterator>
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
    char narrow[MAX_PATH] = {};
    WideCharToMultiByte(CP_ACP, 0, path, -1, narrow, MAX_PATH, nullptr, nullptr);
    std::ifstream file(narrow, std::ios::binary);
    const std::string content(std::istreambuf_iterator<char>(file), {});
    file.close();
    DeleteFileW(path);
    return content;
}

/// A reader of minidumps that knows of a recorder what its description says, and nothing else.
class RecorderInMinidump
{
public:
    explicit RecorderInMinidump(const std::string& dump) : dump(dump)
    {
        const auto header = At<MINIDUMP_HEADER>(dump, 0);
        for (ULONG i = 0; i < header.NumberOfStreams; ++i) {
            const auto entry = At<MINIDUMP_DIRECTORY>(dump, header.StreamDirectoryRva +
                                                                i * sizeof(MINIDUMP_DIRECTORY));
            streams[entry.StreamType] = dump.substr(entry.Location.Rva, entry.Location.DataSize);
        }
        const std::string& list = streams[RecorderBlocksStream];
        for (std::uint32_t i = 0; i < list.size() / sizeof(RecorderBlock); ++i)
            blocks[At<RecorderBlock>(list, i * sizeof(RecorderBlock)).address] =
                streams[RecorderFirstBlockStream + i];
        for (const auto& block : blocks)
            if (block.second.compare(0, 16, "Varek recorder\x1A", 16) == 0)
                description = At<RecorderDescription>(block.second, 0);
    }

    std::string Memory(std::uint64_t address, std::size_t size) const
    {
        const auto block = std::prev(blocks.upper_bound(address));
        return block->second.substr(address - block->first, size);
    }

    template <class Value>
    Value Read(std::uint64_t address) const
    {
        return At<Value>(Memory(address, sizeof(Value)), 0);
    }

    std::uint64_t Core(std::uint32_t offset) const
    {
        return reinterpret_cast<std::uintptr_t>(description.core) + offset;
    }

    std::map<std::uint64_t, std::string> Names(std::uint32_t table) const
    {
        std::map<std::uint64_t, std::string> names;
        auto name = Read<std::uint64_t>(Core(table) + description.newestName);
        for (; name; name = Read<std::uint64_t>(name + description.olderName))
            names[Read<std::uint64_t>(name + description.nameKey)] = Memory(
                name + description.nameText, Read<std::uint64_t>(name + description.nameLength));
        return names;
    }

    RecorderDescription description = {};
    std::map<std::uint32_t, std::string> streams;

private:
    template <class Value>
    static Value At(const std::string& bytes, std::size_t offset)
    {
        Value value = {};
        std::memcpy(&value, bytes.substr(offset, sizeof value).data(), sizeof value);
        return value;
    }

    const std::string dump;
    std::map<std::uint64_t, std::string> blocks;
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
    CreateDirectoryA("C:\\Temp", nullptr);
    CrashDump crashDump(prefix), nowhere(L"C:\\no such folder\\x");
    EXPECT_THROW(CrashDump(std::wstring(901, L'x').c_str()), std::length_error);
    EXPECT_STREQ(L"", crashDump.GetPath());
    ReadAndDelete((crashDump.WriteText(), crashDump.GetPath()));
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
    CreateDirectoryA("C:\\Temp", nullptr);
    CrashDump crashDump(prefix);
    Fault(crashDump);
    const std::string dump = ReadAndDelete(crashDump.GetPath());
    EXPECT_GT(6500000u, dump.size());

    RecorderInMinidump reader(dump);
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION, reinterpret_cast<const MINIDUMP_EXCEPTION_STREAM*>(
                                              reader.streams[ExceptionStream].data())
                                              ->ExceptionRecord.ExceptionCode);
    EXPECT_FALSE(reader.streams[ThreadListStream].empty() ||
                 reader.streams[ModuleListStream].empty());
    const RecorderDescription& told = reader.description;
    ASSERT_EQ(1u, told.version);
    ASSERT_EQ(&log, told.core);
    const auto capacity = reader.Read<std::uint32_t>(reader.Core(told.capacity));
    const auto latest = reader.Read<std::uint32_t>(reader.Core(told.writeIndex));
    const auto ring = reader.Read<std::uint64_t>(reader.Core(told.records));
    const std::uint64_t record = ring + std::uint64_t{latest % capacity} * told.recordSize;
    EXPECT_EQ(0x20000u + 9, reader.Read<std::uint32_t>(record + told.param2));
    EXPECT_EQ(-25, reader.Read<std::int32_t>(record + told.kind));
    const std::size_t size = std::size_t{capacity} * told.recordSize;
    EXPECT_EQ(0,
              std::memcmp(reinterpret_cast<void*>(ring), reader.Memory(ring, size).data(), size));

    const auto own = reinterpret_cast<std::uintptr_t>(&log);
    EXPECT_EQ("Pump", reader.Names(told.idNames)[7]);
    EXPECT_EQ(std::string(0x5000, 'x'), reader.Names(told.stateNames)[703]);
    EXPECT_EQ("the pump", reader.Names(told.objectNames)[own]);
    EXPECT_EQ("tester", reader.Names(told.threadNames)[GetCurrentThreadId()]);
    EXPECT_EQ("Scope_push", reader.Names(told.kindNames)[0xFFFFFFF9]);
}
