#include "xml/index/MXmlRecordStore.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

void MXmlRecordStore::Grow(std::int64_t count)
{
    if (recordCapacity >= count)
        return;
    const std::int32_t oldLast = recordCapacity == 0 ? 0 : (recordCapacity - 1) >> SegmentShift;
    std::int64_t newLast = (count - 1) >> SegmentShift;
    if (newLast > oldLast + 1) {
        newLast = oldLast + 1;
        count = (newLast + 1) * SegmentRecords;
    }
    if (count > std::numeric_limits<std::int32_t>::max())
        throw std::length_error("MXmlRecordStore: too many elements");

    const std::int32_t last = static_cast<std::int32_t>(newLast);
    std::int32_t held = recordCapacity - oldLast * SegmentRecords;
    if (segmentSlots <= last)
        GrowSlots(last);
    if (last > oldLast) {
        MakeRoom(oldLast, held, SegmentRecords);
        held = 0;
    }
    MakeRoom(last, held, static_cast<std::int32_t>(count - newLast * SegmentRecords));
    recordCapacity = static_cast<std::int32_t>(count);
}

void MXmlRecordStore::Foresee(std::int64_t capacity, std::int32_t used)
{
    const std::int32_t room =
        static_cast<std::int32_t>(std::min<std::int64_t>(capacity - LastBegin(), SegmentRecords));
    if (lastRoom < room)
        MoveLast(room, used);
}

void MXmlRecordStore::Trim(std::int32_t used)
{
    const std::int32_t told = recordCapacity - LastBegin();
    if (lastRoom > told)
        MoveLast(told, used);
}

// Stays where it is if there is no memory to move it to.
void MXmlRecordStore::MoveLast(std::int32_t room, std::int32_t used)
{
    Segment moved(new (std::nothrow) MXmlElementRecord[static_cast<std::size_t>(room)]);
    if (!moved)
        return;
    Segment& last = segments[LastBegin() >> SegmentShift];
    std::copy_n(last.get(), std::max(used - LastBegin(), 0), moved.get());
    last = std::move(moved);
    lastRoom = room;
}

void MXmlRecordStore::GrowSlots(std::int32_t lastSegment)
{
    const std::int32_t slots = lastSegment * 2 + 4;
    std::unique_ptr<Segment[]> grown(new Segment[static_cast<std::size_t>(slots)]);
    std::move(segments.get(), segments.get() + segmentSlots, grown.get());
    segments = std::move(grown);
    segmentSlots = slots;
}

void MXmlRecordStore::MakeRoom(std::int32_t segment, std::int32_t used, std::int32_t wanted)
{
    if (segments[segment] && lastRoom >= wanted)
        return;
    const std::int32_t room = used < LongestShort ? wanted : SegmentRecords;
    Segment grown(new MXmlElementRecord[static_cast<std::size_t>(room)]);
    std::copy_n(segments[segment].get(), used, grown.get());
    segments[segment] = std::move(grown);
    lastRoom = room;
}
