#pragma once

#include "xml/index/MXmlElementIndex.h"

/// Gives back, when it goes, the records that were taken since it came, unless they are to be kept.
class MXmlRecordsTaken
{
public:
    /// The index must outlive it.
    explicit MXmlRecordsTaken(MXmlElementIndex& elements) : index(elements), count(index.Count()) {}

    ~MXmlRecordsTaken()
    {
        if (!kept)
            index.GiveBack(count);
    }

    MXmlRecordsTaken(const MXmlRecordsTaken&) = delete;
    MXmlRecordsTaken& operator=(const MXmlRecordsTaken&) = delete;

    /// Nothing is given back. To be called before a record is linked.
    void Keep() { kept = true; }

private:
    MXmlElementIndex& index;
    const std::int32_t count;
    bool kept = false;
};
