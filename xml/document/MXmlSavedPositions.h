#pragma once

#include "xml/index/MXmlElementIndex.h"
#include <memory>
#include <string>

/// Which of a position's three indices a saved entry holds, and the state of its place.
enum MXmlSavedFlag : std::uint32_t {
    /// The index was the current element. With neither this nor `XmlSavedChild`, the level above.
    XmlSavedMain = 1,
    /// The index was the current child.
    XmlSavedChild = 2,
    /// The entry holds a position.
    XmlSavedUsed = 4,
    /// Last entry of its bucket.
    XmlSavedLast = 8
};

/// A position saved under a name.
struct MXmlSavedPosition {
    std::wstring name;       ///< may be empty
    std::int32_t index = 0;  ///< the record
    std::uint32_t flags = 0; ///< `MXmlSavedFlag` bits
};

/// The positions that a document keeps by name: a small hash table that takes no memory until the
/// first one is saved. Names are compared exactly.
class MXmlSavedPositions
{
public:
    /// Buckets of the table, which is never made larger.
    static constexpr std::uint32_t BucketCount = 7;

    /// Keeps `index` with its kind (`XmlSavedMain`, `XmlSavedChild` or 0) under `name`, in place of
    /// what stood there under that name.
    void Save(const wchar_t* name, std::int32_t index, std::uint32_t kind);

    /// The entry of that name, or null. Valid until the next change of the table.
    const MXmlSavedPosition* Find(const wchar_t* name) const;

    /// Drops the entries whose elements were deleted.
    void Purge(const MXmlElementIndex& index);

    /// Drops all entries and frees the table.
    void Clear() { buckets.reset(); }

    /// Number of places in the bucket that `name` falls into.
    std::int32_t BucketSize(const wchar_t* name) const;

private:
    using Bucket = std::unique_ptr<MXmlSavedPosition[]>;

    static std::uint32_t BucketOf(const wchar_t* name);
    static Bucket MakeBucket(std::int32_t size);
    static MXmlSavedPosition& PlaceFor(const wchar_t* name, Bucket& bucket);
    static MXmlSavedPosition& GrowBucket(Bucket& bucket, std::int32_t last);
    static void PurgeBucket(MXmlSavedPosition* bucket, const MXmlElementIndex& index);

    std::unique_ptr<Bucket[]> buckets;
};
