#pragma once

#include <cstddef>
#include <cstdint>

/// The CRC-32 of data that comes in pieces, as used by zip files and Ethernet.
class Crc32
{
public:
    void Add(const char* data, std::size_t size);
    std::uint32_t GetValue() const { return ~remainder; }

private:
    std::uint32_t remainder = 0xFFFFFFFF;
};
