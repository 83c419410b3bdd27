#pragma once

#include <cstdint>
#include <string>

/// How a child process ended.
struct ChildOutcome {
    std::uint32_t exitCode; ///< the code of an unhandled exception is the exit code too
    std::string output;     ///< standard output and error together
};

/// Something that ends a process, or that needs a process of its own: defined at file level in the
/// test's file, run by name in a child that is this executable again.
///
///     int Crash() { ... }
///     const ChildScenario crash("crash", Crash);
///     ...
///     EXPECT_EQ(0xC0000005, crash.RunInChild().exitCode);
class ChildScenario
{
public:
    /// `body` answers the exit code.
    ChildScenario(const char* name, int (*body)());
    ChildScenario(const ChildScenario&) = delete;
    ChildScenario& operator=(const ChildScenario&) = delete;

    /// Runs the scenario in a child process. One that hangs is ended with exit code 124.
    ChildOutcome RunInChild() const;

    /// For the test main: whether the arguments ask for a scenario, and if so its exit code.
    static bool IsChild(int argc, char** argv, int& exitCode);

private:
    const char* name;
    int (*body)();
    const ChildScenario* next;
};
