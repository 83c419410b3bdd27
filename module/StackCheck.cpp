// What the compiler's check of the stack asks for: a number, which lies between the buffers of a
// function and its way back, and what becomes of a process that finds it changed.

#include <cstdint>

#include <windows.h>

extern "C" {

std::uintptr_t __stack_chk_guard = 0;

/// Ends the process as Windows does it, by 0xC0000409 and without a word to anybody in it: the way
/// to who could be told is what was overwritten.
[[noreturn]] void __stack_chk_fail()
{
    const unsigned stackCheckFailed = 2;
    asm volatile("int $0x29" : : "c"(stackCheckFailed));
    __builtin_unreachable();
}
}

namespace
{

/// Made of what differs from run to run and is not seen from outside. Its lowest byte ends a text,
/// so that no text that runs over can hold it. Nothing that is checked has begun yet.
__attribute__((constructor(101), no_stack_protector)) void ChooseStackGuard()
{
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const std::uintptr_t parts[] = {reinterpret_cast<std::uintptr_t>(&now), now.dwLowDateTime,
                                    static_cast<std::uintptr_t>(ticks.QuadPart),
                                    __builtin_ia32_rdtsc()};
    std::uintptr_t number = 0;
    for (const std::uintptr_t part : parts)
        number = (number ^ part ^ number >> 29) * 0x9E3779B97F4A7C15;
    __stack_chk_guard = number << 8;
}

} // namespace
