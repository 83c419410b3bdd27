#include "examples/survey/module/TextCounter.h"

#include <algorithm>

void TextCounter::Add(const char* text, std::size_t size)
{
    counts.bytes += size;
    std::for_each(text, text + size, [this](char character) { Count(character); });
}

void TextCounter::Count(char character)
{
    const bool blank = character == ' ' || (character >= '\t' && character <= '\r');
    counts.words += !blank && !inWord;
    inWord = !blank;
    if (character == '\n') {
        ++counts.lines;
        lineLength = 0;
    } else if (character != '\r') {
        counts.longestLine = std::max(counts.longestLine, ++lineLength);
    }
}

SurveyReport TextCounter::GetReport() const
{
    SurveyReport report = counts;
    report.lines += lineLength != 0;
    return report;
}
