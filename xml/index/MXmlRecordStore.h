#pragma once

#include "xml/index/MXmlElementRecord.h"
#include <memory>

/// The element records of one document, in segments of 65,536 records (2 MiB), so that growth never
/// copies more than one segment. Only the last segment is ever short. It may have memory for more
/// records than the capacity tells of: as many as are foreseen, or a whole segment when one of
/// 4,096 records or more has to grow unforeseen, so that it is copied no more. `Trim` gives that
/// back.
///
/// Growth may move the records of the last segment: keep no reference to a record across `Grow`.
/// Records of a new place are not initialised. Not for several threads at once.
class MXmlRecordStore
{
public:
    /// Records in a full segment.
    static constexpr std::int32_t SegmentRecords = 65536;

    MXmlRecordStore() = default;
    MXmlRecordStore(const MXmlRecordStore&) = delete;
    MXmlRecordStore& operator=(const MXmlRecordStore&) = delete;

    /// @{
    /// A record below `Capacity`, until the next `Grow`.
    MXmlElementRecord& operator[](std::int32_t index)
    {
        return segments[static_cast<std::uint32_t>(index) >> SegmentShift][index & SegmentMask];
    }

    const MXmlElementRecord& operator[](std::int32_t index) const
    {
        return segments[static_cast<std::uint32_t>(index) >> SegmentShift][index & SegmentMask];
    }
    /// @}

    /// Number of records that the store can hold before it is told to grow.
    std::int32_t Capacity() const { return recordCapacity; }

    /// Length of the array of segments.
    std::int32_t SegmentSlots() const { return segmentSlots; }

    /// Makes room for `count` records, but goes at most to the end of the next segment; does
    /// nothing if there is room already. Throws `std::bad_alloc`, or `std::length_error` past the
    /// 32,767th segment; either way the records are as before.
    void Grow(std::int64_t count);

    /// Takes the memory that it will take when the capacity has grown to that, but none for a
    /// further segment. Keeps the first `used` records. Does not fail: without the memory it does
    /// nothing.
    void Foresee(std::int64_t capacity, std::int32_t used);

    /// Gives back memory beyond the capacity. Keeps the first `used` records. Does not fail: where
    /// there is no memory to move them to they stay.
    void Trim(std::int32_t used);

private:
    using Segment = std::unique_ptr<MXmlElementRecord[]>;

    static constexpr int SegmentShift = 16;
    static constexpr std::int32_t SegmentMask = SegmentRecords - 1;
    static constexpr std::int32_t LongestShort = 4096;

    void GrowSlots(std::int32_t lastSegment);
    void MakeRoom(std::int32_t segment, std::int32_t used, std::int32_t wanted);
    void MoveLast(std::int32_t room, std::int32_t used);
    // The first record of the last segment.
    std::int32_t LastBegin() const { return (recordCapacity - 1) & ~SegmentMask; }

    std::unique_ptr<Segment[]> segments;
    std::int32_t recordCapacity = 0;
    // Records for which the last segment has memory.
    std::int32_t lastRoom = 0;
    std::int32_t segmentSlots = 0;
};
