#include "tests/support/Raised.h"

namespace
{

std::string Narrow(const MString& text)
{
    return std::string(text.c_str(), text.c_str() + text.GetLength());
}

} // namespace

std::string FailureText(const MException& exception)
{
    const MError* const failure = exception.GetFailure();
    if (!failure)
        return "no errors";
    std::string text =
        Narrow(failure->GetCode().IsEmpty() ? failure->GetMessageText() : failure->GetCode());
    for (const auto& parameter : failure->GetParameters())
        text += " " + Narrow(parameter.first) + "=" + Narrow(parameter.second);
    return text;
}
