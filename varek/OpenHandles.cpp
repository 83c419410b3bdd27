#include "varek/OpenHandles.h"

#include <cstdint>

#include <windows.h>

namespace varek
{

namespace
{

constexpr std::uintptr_t handleStep = 4;
constexpr int mostClosedInARow = 100;

// The list of the handles of all processes would tell as well, but Wine's server crashes over a
// process that has none, as one that begins or ends beside this.
std::size_t CountByTrying()
{
    std::size_t count = 0;
    int closed = 0;
    for (std::uintptr_t value = handleStep; closed < mostClosedInARow; value += handleStep) {
        DWORD flags;
        const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags);
        closed = isOpen ? 0 : closed + 1;
        count += isOpen;
    }
    return count;
}

} // namespace

std::size_t CountOpenHandles()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count > 0 ? count : CountByTrying();
}

} // namespace varek
