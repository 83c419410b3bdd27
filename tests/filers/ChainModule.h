#pragma once

#include "foundation/MError.h"
#include "module/Runtime.h"

#include <string>

/// An error that carries a filed chain.
struct CarryingError : MError {
    explicit CarryingError(const MString& text) : MError(L"Carrier"), text(text) {}
    MString GetChainText() const override { return text; }
    MDynObject* Clone() const override { return new CarryingError(*this); }

    MString text;
};

typedef Varek::Runtime::CallbackFunctor1Param<const std::wstring&> TextReceiver;

/// What the modules of the chain test export beside the three functions of every module: fails as
/// an engine thread does, by an exception whose first error carries the chain filed in `text`, and
/// shuts the module down. `receiver` gets the fatal error text and goes to the module.
extern "C" VAREK_API void FailCarrying(const std::wstring& text, TextReceiver* receiver);
