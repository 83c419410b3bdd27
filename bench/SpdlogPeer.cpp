#define SPDLOG_FMT_EXTERNAL
#define FMT_HEADER_ONLY

#include "bench/SpdlogPeer.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/ringbuffer_sink.h>

#include <windows.h>

namespace
{

// What a record holds beside the two numbers; time, thread and logger come by themselves.
const char event[] = "Timing_point ({}, {}) in_class {} at {} for_object {}";
const char className[] = "Bench";
const char functionName[] = "LogTimingPoints";

} // namespace

struct SpdlogPeer::Logger {
    spdlog::logger logger;
};

SpdlogPeer::SpdlogPeer(std::size_t capacity)
    : logger(
          new Logger{{"recorder", std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(capacity)}})
{
}

SpdlogPeer::~SpdlogPeer() = default;

void SpdlogPeer::LogTimingPoint(std::uint32_t a, std::uint32_t b)
{
    logger->logger.info(event, a, b, className, functionName, static_cast<const void*>(this));
}

void SpdlogPeer::LogTimingPointByCounter(std::uint32_t a, std::uint32_t b)
{
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    spdlog::memory_buf_t text;
    fmt::format_to(fmt::appender(text), event, a, b, className, functionName,
                   static_cast<const void*>(this));
    logger->logger.log(spdlog::log_clock::time_point(spdlog::log_clock::duration(ticks.QuadPart)),
                       spdlog::source_loc(), spdlog::level::info,
                       spdlog::string_view_t(text.data(), text.size()));
}
