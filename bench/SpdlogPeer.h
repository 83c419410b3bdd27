#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

/// The widely used way to keep the latest events in memory: spdlog with its ring-buffer sink.
class SpdlogPeer
{
public:
    explicit SpdlogPeer(std::size_t capacity);
    ~SpdlogPeer();

    /// The same event, with the same two numbers.
    void LogTimingPoint(std::uint32_t a, std::uint32_t b);

    /// The same without reading a clock.
    void LogTimingPointTimeless(std::uint32_t a, std::uint32_t b);

private:
    struct Logger;

    std::unique_ptr<Logger> logger;
};
