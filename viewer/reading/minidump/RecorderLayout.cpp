#include "viewer/reading/minidump/RecorderLayout.h"

namespace
{

constexpr std::string_view marker("Varek recorder\x1A\0", 16);
constexpr std::uint32_t knownVersion = 1;
constexpr std::uint32_t knownSize = 168;
constexpr std::size_t alignment = 16;

/// The fields that stand one after the other from offset 40 on, as the description has them.
template <class Layout>
auto Fields(Layout& layout)
{
    return std::vector{&layout.coreSize,
                       &layout.records,
                       &layout.counterFrequency,
                       &layout.startSeconds,
                       &layout.startMilliseconds,
                       &layout.startCounter,
                       &layout.startDate,
                       &layout.capacity,
                       &layout.writeIndex,
                       &layout.kindNames,
                       &layout.threadNames,
                       &layout.idNames,
                       &layout.stateNames,
                       &layout.objectNames,
                       &layout.recordSize,
                       &layout.time,
                       &layout.kind,
                       &layout.param1,
                       &layout.param2,
                       &layout.classId,
                       &layout.pointId,
                       &layout.object,
                       &layout.threadId,
                       &layout.newestName,
                       &layout.newestBlock,
                       &layout.olderName,
                       &layout.nameKey,
                       &layout.nameLength,
                       &layout.nameText};
}

bool IsSane(const RecorderLayout& layout)
{
    constexpr std::uint32_t most = 1 << 16;
    constexpr std::uint32_t leastRecord = 40; // its fields, none on top of another
    for (const std::uint32_t* field : Fields(layout)) {
        if (*field > most)
            return false;
    }
    return layout.recordSize >= leastRecord;
}

std::optional<RecorderLayout> Parse(const Bytes& description, std::uint64_t address)
{
    constexpr std::uint64_t firstField = 40;
    if (description.At<std::uint64_t>(24) != address ||
        description.At<std::uint32_t>(16) != knownVersion ||
        description.At<std::uint32_t>(20) < knownSize)
        return std::nullopt;

    RecorderLayout layout = {};
    layout.self = address;
    layout.core = description.At<std::uint64_t>(32);
    std::uint64_t offset = firstField;
    for (std::uint32_t* field : Fields(layout)) {
        *field = description.At<std::uint32_t>(offset);
        offset += sizeof *field;
    }
    return IsSane(layout) ? std::optional<RecorderLayout>(layout) : std::nullopt;
}

} // namespace

std::vector<RecorderLayout> RecorderLayout::FindAll(const AddressSpace& memory)
{
    std::vector<RecorderLayout> layouts;
    for (const AddressSpace::Range& range : memory.Ranges()) {
        const std::string_view bytes(range.bytes.Data(), range.bytes.Size());
        for (std::size_t at = 0; (at = bytes.find(marker, at)) != std::string_view::npos; ++at) {
            const std::uint64_t address = range.begin + at;
            const std::optional<Bytes> description = range.bytes.Part(at, knownSize);
            if (address % alignment != 0 || !description)
                continue;
            if (const std::optional<RecorderLayout> layout = Parse(*description, address))
                layouts.push_back(*layout);
        }
    }
    return layouts;
}
