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

    /// The same event, with the same two numbers, as the peer comes.
    void LogTimingPoint(std::uint32_t a, std::uint32_t b);

    /// The same, but stamped by the performance counter, as our records are, instead of the
    /// peer's own cheaper clock.
    void LogTimingPointByCounter(std::uint32_t a, std::uint32_t b);

private:
    struct Logger;

    std::unique_ptr<Logger> logger;
};
