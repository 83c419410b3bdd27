#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

/// Bytes from a file that can say anything: nothing is read outside them. Numbers are
/// little-endian, as they are wherever this runs.
class Bytes
{
public:
    Bytes() = default;
    explicit Bytes(std::string_view bytes) : bytes(bytes) {}

    std::size_t Size() const { return bytes.size(); }
    const char* Data() const { return bytes.data(); }

    /// None unless all of it is inside.
    std::optional<Bytes> Part(std::uint64_t offset, std::uint64_t size) const
    {
        if (offset > bytes.size() || size > bytes.size() - offset)
            return std::nullopt;
        return Bytes(
            bytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size)));
    }

    /// 0 unless all of it is inside.
    template <class Number>
    Number At(std::uint64_t offset) const
    {
        Number number = 0;
        if (const std::optional<Bytes> part = Part(offset, sizeof number))
            std::memcpy(&number, part->Data(), sizeof number);
        return number;
    }

private:
    std::string_view bytes;
};
