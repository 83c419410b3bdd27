#include "viewer/reading/minidump/AddressSpace.h"

#include <algorithm>

namespace
{

bool Touch(const AddressSpace::Range& one, const AddressSpace::Range& next)
{
    return one.begin + one.bytes.Size() == next.begin &&
           one.bytes.Data() + one.bytes.Size() == next.bytes.Data();
}

} // namespace

AddressSpace::AddressSpace(std::vector<Range> given)
{
    std::stable_sort(given.begin(), given.end(),
                     [](const Range& one, const Range& other) { return one.begin < other.begin; });
    for (const Range& range : given) {
        const bool wraps = range.begin + range.bytes.Size() < range.begin;
        if (wraps || (!ranges.empty() && ranges.back().begin == range.begin))
            continue;
        if (!ranges.empty() && Touch(ranges.back(), range))
            ranges.back().bytes = Bytes(std::string_view(
                ranges.back().bytes.Data(), ranges.back().bytes.Size() + range.bytes.Size()));
        else
            ranges.push_back(range);
    }
}

std::optional<Bytes> AddressSpace::Read(std::uint64_t address, std::uint64_t size) const
{
    const Bytes bytes = ReadUpTo(address, size);
    return bytes.Size() == size ? std::optional<Bytes>(bytes) : std::nullopt;
}

Bytes AddressSpace::ReadUpTo(std::uint64_t address, std::uint64_t most) const
{
    const auto behind = std::upper_bound(
        ranges.begin(), ranges.end(), address,
        [](std::uint64_t wanted, const Range& range) { return wanted < range.begin; });
    if (behind == ranges.begin())
        return Bytes();
    const Range& range = *std::prev(behind);
    const std::uint64_t offset = address - range.begin;
    const std::uint64_t left =
        range.bytes.Size() - std::min<std::uint64_t>(offset, range.bytes.Size());
    return range.bytes.Part(offset, std::min(most, left)).value_or(Bytes());
}
