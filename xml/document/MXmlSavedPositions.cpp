#include "xml/document/MXmlSavedPositions.h"

#include <utility>

namespace
{

bool Is(const MXmlSavedPosition& entry, MXmlSavedFlag flag)
{
    return (entry.flags & flag) != 0;
}

} // namespace

void MXmlSavedPositions::Save(const wchar_t* name, std::int32_t index, std::uint32_t kind)
{
    if (!buckets)
        buckets.reset(new Bucket[BucketCount]);
    Bucket& bucket = buckets[BucketOf(name)];
    if (!bucket)
        bucket = MakeBucket(2);
    MXmlSavedPosition& entry = PlaceFor(name, bucket);
    entry.name = name;
    entry.index = index;
    entry.flags = XmlSavedUsed | kind | (entry.flags & XmlSavedLast);
}

const MXmlSavedPosition* MXmlSavedPositions::Find(const wchar_t* name) const
{
    if (!buckets)
        return nullptr;
    const MXmlSavedPosition* entry = buckets[BucketOf(name)].get();
    while (entry && Is(*entry, XmlSavedUsed)) {
        if (entry->name == name)
            return entry;
        entry = Is(*entry, XmlSavedLast) ? nullptr : entry + 1;
    }
    return nullptr;
}

void MXmlSavedPositions::Purge(const MXmlElementIndex& index)
{
    for (std::uint32_t i = 0; buckets && i < BucketCount; ++i) {
        if (buckets[i])
            PurgeBucket(buckets[i].get(), index);
    }
}

std::int32_t MXmlSavedPositions::BucketSize(const wchar_t* name) const
{
    if (!buckets || !buckets[BucketOf(name)])
        return 0;
    const MXmlSavedPosition* entry = buckets[BucketOf(name)].get();
    std::int32_t size = 1;
    for (; !Is(*entry, XmlSavedLast); ++entry)
        ++size;
    return size;
}

std::uint32_t MXmlSavedPositions::BucketOf(const wchar_t* name)
{
    std::uint32_t sum = 0;
    for (; *name != 0; ++name)
        sum += static_cast<std::uint32_t>(*name);
    return sum % BucketCount;
}

MXmlSavedPositions::Bucket MXmlSavedPositions::MakeBucket(std::int32_t size)
{
    Bucket bucket(new MXmlSavedPosition[static_cast<std::size_t>(size)]);
    bucket[size - 1].flags = XmlSavedLast;
    return bucket;
}

MXmlSavedPosition& MXmlSavedPositions::PlaceFor(const wchar_t* name, Bucket& bucket)
{
    for (std::int32_t i = 0;; ++i) {
        MXmlSavedPosition& entry = bucket[i];
        if (!Is(entry, XmlSavedUsed) || entry.name == name)
            return entry;
        if (Is(entry, XmlSavedLast))
            return GrowBucket(bucket, i);
    }
}

MXmlSavedPosition& MXmlSavedPositions::GrowBucket(Bucket& bucket, std::int32_t last)
{
    Bucket grown = MakeBucket(last * 2 + 12);
    for (std::int32_t i = 0; i <= last; ++i)
        grown[i] = std::move(bucket[i]);
    grown[last].flags &= ~static_cast<std::uint32_t>(XmlSavedLast);
    bucket = std::move(grown);
    return bucket[last + 1];
}

void MXmlSavedPositions::PurgeBucket(MXmlSavedPosition* bucket, const MXmlElementIndex& index)
{
    MXmlSavedPosition* kept = bucket;
    for (MXmlSavedPosition* entry = bucket;; ++entry) {
        const bool isLast = Is(*entry, XmlSavedLast);
        const bool keep = Is(*entry, XmlSavedUsed) && !index[entry->index].Has(XmlElementDeleted);
        const std::uint32_t keptFlags = entry->flags & ~static_cast<std::uint32_t>(XmlSavedLast);
        entry->flags &= XmlSavedLast;
        if (keep) {
            kept->name.swap(entry->name);
            kept->index = entry->index;
            kept->flags |= keptFlags;
            ++kept;
        }
        if (isLast)
            return;
    }
}
