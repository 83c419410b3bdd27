#pragma once

#include <cstdint>

/// Has the calling thread's `nth` call of that name from now on answer `answer`, doing nothing but
/// to set the last error: what the kernel answers when something is wrong with it. One at a time.
void AnswerNext(const char* call, std::uint32_t answer, std::uint32_t lastError = 0, int nth = 1);

/// For the kernel: whether this call is the one that was told its answer.
bool IsToldAnswer(const char* call, std::uint32_t& answer);
