#include "explore/kernel/Answers.h"

#include "explore/kernel/Turn.h"

#include <cstring>

namespace
{

struct {
    const char* call;
    std::uint32_t answer;
    std::uint32_t lastError;
    int callsLeft;
} told = {"", 0, 0, 0};

} // namespace

void AnswerNext(const char* call, std::uint32_t answer, std::uint32_t lastError, int nth)
{
    Turn turn("AnswerNext");
    told = {call, answer, lastError, nth};
}

bool IsToldAnswer(const char* call, std::uint32_t& answer)
{
    if (told.callsLeft == 0 || std::strcmp(call, told.call) != 0 || --told.callsLeft > 0)
        return false;
    answer = told.answer;
    CurrentThread().lastError = told.lastError;
    return true;
}
