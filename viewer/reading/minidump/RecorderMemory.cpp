#include "viewer/reading/minidump/RecorderMemory.h"

#include "viewer/reading/minidump/RecorderNames.h"

#include <algorithm>

namespace
{

constexpr std::int64_t million = 1000000;

/// Ticks as microseconds, as far as they make sense.
class Ticks
{
public:
    explicit Ticks(std::int64_t frequency) : frequency(frequency) {}

    bool AreKnown() const { return frequency > 0 && frequency < million * million; }

    /// From one tick to another, cut toward 0 as the recorder cuts them.
    bool Between(std::int64_t from, std::int64_t to, std::int64_t& time) const
    {
        constexpr std::int64_t mostSeconds = 4000000000;
        const auto ticks = static_cast<std::int64_t>(static_cast<std::uint64_t>(to) -
                                                     static_cast<std::uint64_t>(from));
        const std::int64_t seconds = ticks / frequency;
        time = std::clamp(seconds, -mostSeconds, mostSeconds) * million +
               ticks % frequency * million / frequency;
        return seconds > -mostSeconds && seconds < mostSeconds;
    }

private:
    const std::int64_t frequency;
};

class Reader
{
public:
    Reader(const RecorderLayout& layout, const Bytes& core, const AddressSpace& memory,
           const std::vector<MinidumpFile::Module>& modules)
        : layout(layout), core(core), ticks(core.At<std::int64_t>(layout.counterFrequency)),
          capacity(core.At<std::uint32_t>(layout.capacity)),
          ring(memory.Read(core.At<std::uint64_t>(layout.records),
                           std::uint64_t(capacity) * layout.recordSize)),
          names(layout, core, memory, modules)
    {
    }

    bool HasRing() const { return ring && capacity != 0 && ticks.AreKnown(); }

    Dump Read()
    {
        const std::uint32_t next = (core.At<std::uint32_t>(layout.writeIndex) + 1) % capacity;
        oldest = IsEmpty(Slot(next)) ? 0 : next;
        oldestTime = Slot(oldest).At<std::int64_t>(layout.time);
        ReadStart();
        dump.records.reserve(capacity);
        for (std::uint32_t i = 0; i < capacity; ++i)
            Take(Slot((oldest + i) % capacity));
        dump.findings.namesMissing = names.areMissing;
        return std::move(dump);
    }

private:
    Bytes Slot(std::uint32_t index) const
    {
        const Bytes records = ring.value_or(Bytes());
        return records.Part(std::uint64_t(index) * layout.recordSize, layout.recordSize)
            .value_or(Bytes());
    }

    static bool IsEmpty(const Bytes& slot)
    {
        return std::all_of(slot.Data(), slot.Data() + slot.Size(),
                           [](char byte) { return byte == 0; });
    }

    void ReadStart()
    {
        ticks.Between(oldestTime, core.At<std::int64_t>(layout.startCounter), dump.reference);
        constexpr std::size_t dateLength = 24; // without the line end
        if (const std::optional<Bytes> date = core.Part(layout.startDate, dateLength))
            dump.start = WallClock::Parse(std::string_view(date->Data(), date->Size()),
                                          core.At<std::uint16_t>(layout.startMilliseconds));
        dump.findings.noWallClock = !dump.start;
    }

    void Take(const Bytes& slot)
    {
        if (IsEmpty(slot))
            return;
        DumpRecord record = {};
        const bool hasTime =
            ticks.Between(oldestTime, slot.At<std::int64_t>(layout.time), record.time);
        record.kind = slot.At<std::int32_t>(layout.kind);
        record.param1 = slot.At<std::int32_t>(layout.param1);
        record.param2 = slot.At<std::int32_t>(layout.param2);
        record.classId = slot.At<std::int32_t>(layout.classId);
        record.pointId = slot.At<std::int32_t>(layout.pointId);
        record.object = slot.At<std::uint64_t>(layout.object);
        record.threadId = slot.At<std::int32_t>(layout.threadId);
        if (!hasTime) {
            ++dump.findings.tornRecords;
            return;
        }
        dump.findings.halfWritten += record.threadId == 0;
        dump.names.Learn(record, names.Of(record));
        dump.records.push_back(record);
    }

    const RecorderLayout& layout;
    const Bytes core;
    const Ticks ticks;
    const std::uint32_t capacity;
    const std::optional<Bytes> ring;
    RecorderNames names;
    std::uint32_t oldest = 0;
    std::int64_t oldestTime = 0;
    Dump dump;
};

} // namespace

std::optional<Dump> RecorderMemory::Read(const RecorderLayout& layout, const AddressSpace& memory,
                                         const std::vector<MinidumpFile::Module>& modules)
{
    const std::optional<Bytes> core = memory.Read(layout.core, layout.coreSize);
    if (!core)
        return std::nullopt;
    Reader reader(layout, *core, memory, modules);
    return reader.HasRing() ? std::optional<Dump>(reader.Read()) : std::nullopt;
}
