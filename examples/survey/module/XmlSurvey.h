#pragma once

#include "examples/survey/module/SurveyReport.h"

#include <cstddef>
#include <string>

/// Surveys a file that comes in pieces as an XML document, if its first character says that it is
/// one.
class XmlSurvey
{
public:
    void Add(const char* data, std::size_t size);

    XmlReport GetReport() const;

private:
    enum class Verdict { Unknown, Xml, Other };

    Verdict verdict = Verdict::Unknown;
    std::string bytes;
};
