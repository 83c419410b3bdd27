#pragma once

#include <cstdint>

class MFlowLocation;

/// Brackets a traced scope: an event when it is opened at an `MFlowLocation`, and one when the
/// block is left, by return or by exception alike.
///
/// It keeps copies of what it was opened with, so the closing record says the same as the opening
/// one even if the shared location has changed meanwhile. A scope never opened records nothing.
class MFlowScope
{
public:
    MFlowScope() : active(false) {}

    /// Opens at `location`, with two numbers of the caller's choice.
    explicit MFlowScope(MFlowLocation& location, std::uint32_t a = 0, std::uint32_t b = 0);

    ~MFlowScope()
    {
        if (active)
            Close();
    }
    MFlowScope(const MFlowScope&) = delete;
    MFlowScope& operator=(const MFlowScope&) = delete;

private:
    friend class MFlowLocation;

    void Close();

    std::uint32_t param1;
    std::uint32_t param2;
    bool active;
    const wchar_t* className;
    const wchar_t* functionName;
    const void* object;
};
