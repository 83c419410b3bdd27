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
    if (exception.GetErrorCount() == 0)
        return "no errors";
    const auto last = static_cast<std::int32_t>(exception.GetErrorCount() - 1);
    const MError& failure = *exception.GetError(last);
    std::string text =
        Narrow(failure.GetCode().IsEmpty() ? failure.GetMessageText() : failure.GetCode());
    for (const auto& parameter : failure.GetParameters())
        text += " " + Narrow(parameter.first) + "=" + Narrow(parameter.second);
    return text;
}
