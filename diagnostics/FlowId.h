#pragma once

#include <cstdint>

/// The id by which the log knows a class, a function or an error: the low 32 bits of the address of
/// the wide literal that holds its name. Each has one literal, whose address is stable for the life
/// of the process; ids mean nothing outside it.
inline std::uint32_t FlowId(const wchar_t* literal)
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(literal));
}
