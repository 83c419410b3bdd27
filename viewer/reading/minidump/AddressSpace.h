#pragma once

#include "viewer/reading/minidump/Bytes.h"

#include <vector>

/// The memory of a process, as far as a dump holds it.
class AddressSpace
{
public:
    struct Range {
        std::uint64_t begin;
        Bytes bytes;
    };

    /// Ranges that begin where one is already, or wrap around, are left out.
    explicit AddressSpace(std::vector<Range> ranges);

    /// None unless the dump holds all of it, and in one range.
    std::optional<Bytes> Read(std::uint64_t address, std::uint64_t size) const;

    /// What there is from `address` on, `most` bytes at most.
    Bytes ReadUpTo(std::uint64_t address, std::uint64_t most) const;

    /// In order of their addresses; neighbours that touch each other in the file too are one.
    const std::vector<Range>& Ranges() const { return ranges; }

private:
    std::vector<Range> ranges;
};
