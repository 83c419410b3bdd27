#pragma once

#include <cstdint>

extern "C" std::uintptr_t _beginthreadex(void* security, unsigned stackSize,
                                         unsigned (*routine)(void*), void* argument, unsigned flags,
                                         unsigned* threadId);
