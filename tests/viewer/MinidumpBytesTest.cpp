// Minidumps put together by hand: one recorder with five records, in each kind of list.

#include "tests/viewer/SampleDump.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/reading/minidump/AddressSpace.h"
#include "viewer/reading/minidump/MinidumpDumps.h"
#include "viewer/reading/minidump/RecorderNames.h"
#include "viewer/reading/TextFile.h"
#include "viewer/showing/text/ScopeTree.h"
#include "viewer/showing/text/Summary.h"

#include <gtest/gtest.h>

namespace
{

std::string Seed(const char* name)
{
    return TextFile::Read(std::string(VAREK_MINIDUMPS) + name);
}

/// Whether the viewer makes anything of it, or says that there is nothing to be made.
bool Tells(const std::string& bytes)
{
    try {
        return !Summary::Compose(RecordingsOf(bytes)).empty();
    } catch (const std::runtime_error&) {
        return true;
    }
}

} // namespace

TEST(MinidumpBytes, TellTheSameFromEachKindOfList)
{
    for (const char* name : {"streams", "list", "list64"}) {
        EXPECT_EQ(R"(Thread 7 Host
         time         took
     0.000000               - Construction at Pump.Pump (main pump), line 32
     0.000100     0.000300  Pump.Drain (main pump)
     0.000200                 - Root_error RunsDry at Pump.Drain (main pump), line 38

Thread 8
         time         took
     0.000300               - State_change to Running at Pump.Drain (main pump)
)",
                  ScopeTree::Compose(RecordingsOf(Seed(name))))
            << name;
        const Dump dump = ReadText(Seed(name));
        EXPECT_EQ("2026-11-15 15:12:20.532", dump.WallClockAt(dump.reference));
        EXPECT_EQ("pump.exe on Windows 10.0.19045, 8 processors", dump.process);
        EXPECT_EQ("access violation C0000005 at pump.exe+1234, writing 0000000000000018",
                  dump.crash->what);
        EXPECT_EQ(std::vector<std::string>(), dump.findings.Sentences());
    }
}

TEST(MinidumpBytes, CanBeUnusualOrDamaged)
{
    const std::string seed = Seed("list");
    std::string gap = seed, undated = seed, endless = seed;
    gap[84] += 4; // the size of the last list, between whose number of entries and these it lies
    EXPECT_EQ(5u, ReadText(gap.insert(1392, 4, '\0')).records.size());
    undated.replace(184, 2, "\xFF\xFF"); // where the date lies in the core
    EXPECT_TRUE(ReadText(undated).findings.noWallClock);
    endless.replace(792, 3, std::string("\x20\0\x40", 3)); // a name that is older than itself
    EXPECT_TRUE(ReadText(endless).findings.namesMissing);
}

TEST(AddressSpace, JoinsWhatTouchesAndDropsWhatCannotBe)
{
    const Bytes all("abcdefgh"), front = *all.Part(0, 4), back = *all.Part(4, 4);
    const AddressSpace memory(
        {{0x1004, back}, {0x1000, front}, {0x1000, all}, {0x1008, front}, {~0ull, all}});
    EXPECT_EQ(2u, memory.Ranges().size());
    EXPECT_EQ('c', memory.Read(0x1002, 6)->At<char>(0));
    EXPECT_FALSE(memory.Read(0x1002, 7));
}

// The number of an id that is named by a literal is where that lies, as far as 32 bits tell.
TEST(RecorderNames, AreReadFromAModulesLiteralsWhereOthersAreMissing)
{
    const std::uint64_t module = 0x7FF680000000;
    const std::string nowhere(8, '\x10');
    const std::string literals("P\0u\0m\0p\0\0\0P\0\a\0\0\0\xE4\0\0\0\x80\0\0\0\0\1\0\0P\0u\0", 32);
    const AddressSpace memory({{module + 0x100, Bytes(literals)}});
    const std::vector<MinidumpFile::Module> modules(2, {module, 0x1000, "pump.exe"});
    RecorderLayout layout = {};
    layout.nameText = 24;
    RecorderNames names(layout, Bytes(nowhere), memory, modules);
    const std::pair<std::uint32_t, const char*> offsets[] = {
        {0x100, "Pump"}, {0x10A, ""}, {0x110, "\xE4"}, {0x114, ""},
        {0x118, ""},     {0x11C, ""}, {0x900, ""},     {0x1100, ""}};
    for (const auto& [offset, name] : offsets) {
        DumpRecord record = {};
        record.kind = EventKind::MessageSend;
        record.classId = static_cast<std::int32_t>(module + offset);
        EXPECT_EQ(name, names.Of(record).className) << offset;
        EXPECT_EQ("", names.Of(record).parameter);
    }
}

// Cut anywhere, or with any four bytes replaced, they are read or refused.
TEST(MinidumpBytes, CanSayAnything)
{
    for (const char* name : {"streams", "list64"}) {
        const std::string bytes = Seed(name);
        for (std::size_t at = 4; at + 4 <= bytes.size(); ++at) {
            ASSERT_TRUE(Tells(bytes.substr(0, at)));
            for (const char byte : {'\0', '\x7F', '\xFF'})
                ASSERT_TRUE(Tells(std::string(bytes).replace(at, 4, 4, byte)));
        }
    }
}
