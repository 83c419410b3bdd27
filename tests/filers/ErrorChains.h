#pragma once

#include "foundation/MException.h"

#include <string>

/// An error that carries a filed chain.
class CarryingError : public MError
{
public:
    explicit CarryingError(const MString& text) : MError(L"Carrier"), text(text) {}
    MString GetChainText() const override { return text; }
    MDynObject* Clone() const override { return new CarryingError(*this); }

private:
    MString text;
};

/// The Codes of a chain with their parameters, in one line.
inline std::wstring ChainSummary(const MException& exception)
{
    std::wstring summary;
    for (std::uint32_t i = 0; i < exception.GetErrorCount(); ++i) {
        const MError& error = *exception.GetError(static_cast<std::int32_t>(i));
        summary += error.GetCode().c_str();
        for (const auto& parameter : error.GetParameters())
            summary +=
                std::wstring(L" ") + parameter.first.c_str() + L"=" + parameter.second.c_str();
        summary += L";";
    }
    return summary;
}
