#pragma once

#include "foundation/MException.h"

#include <string>

/// An error for which a chain has a null entry.
struct UnclonableError : MError {
    MDynObject* Clone() const override { return nullptr; }
};

/// The newest failure of `exception` as text: its Code, and its parameters as " name=value".
std::string FailureText(const MException& exception);

/// The failure that `call` raises; empty when it raises none.
template <class Call>
std::string Raised(Call call)
{
    try {
        call();
    } catch (MException& exception) {
        return FailureText(exception);
    }
    return std::string();
}
