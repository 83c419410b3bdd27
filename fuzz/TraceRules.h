#pragma once

#include <string>

/// The rule of the trace-event form that `text` breaks, empty for none: strict JSON, times in whole
/// microseconds from 0 on, threads named before they appear, slices of a thread nested. The events
/// have to account for exactly so many records.
std::string BrokenTraceRule(const std::string& text, std::size_t records);

/// The part of a JSON text that `pointer` leads to, "" to all of it, as "/traceEvents/0/name" does,
/// without blanks and with names in order of the alphabet.
std::string JsonPart(const std::string& text, const std::string& pointer);
