#pragma once

#include "examples/survey/module/SurveyReport.h"

#include <cstddef>

/// Counts bytes, lines and words of a text that comes in pieces.
class TextCounter
{
public:
    void Add(const char* text, std::size_t size);

    /// The counts so far; the check sum is not counted here.
    SurveyReport GetReport() const;

private:
    void Count(char character);

    SurveyReport counts;
    std::uint64_t lineLength = 0;
    bool inWord = false;
};
