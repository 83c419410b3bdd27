#pragma once

#include "diagnostics/RecorderDescription.h"

#include <cstdint>

/// The memory of the flight recorders of a process, piece by piece: of every image in it that has
/// one, whoever built it. Collected without memory but its own, and without a lock.
class RecorderBlocks
{
public:
    /// The most that there is room for; the latest names of a process that has more go without.
    static const std::uint32_t capacity = 1024;

    /// Looks at all images anew. A recorder that cannot be read counts as far as it can.
    void Collect();

    /// How many pieces `Collect` has found.
    std::uint32_t GetCount() const { return count; }

    /// The first of them.
    RecorderBlock* Get() { return blocks; }

private:
    static const std::uint32_t mostImages = 1024;

    void CollectImage(const void* image);
    void AddRecorder(const RecorderDescription& description);
    void AddNames(const RecorderDescription& description, std::uint64_t table);
    bool Add(std::uint64_t address, std::uint64_t size);

    std::uint32_t count = 0;
    RecorderBlock blocks[capacity];
    void* images[mostImages];
};
