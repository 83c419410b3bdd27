#pragma once

// What the test module exports beside the three functions that every module has.

enum class Place { Processor, Scheduler, OwnThread };
enum class Deed { Nothing, Raise, ShutDown, Fault, ThrowForeign, Hang };

/// Has `deed` done on one of the module's threads, the third being an engine thread of its own,
/// and returns when it is done or has failed. Raises what a command raised.
typedef void DoOnThread(Place place, Deed deed);

/// Where `Deed::Fault` writes.
const unsigned long long faultAddress = 0x1234;
