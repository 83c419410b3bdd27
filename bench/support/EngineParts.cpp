#include "bench/support/EngineParts.h"

#include "foundation/MException.h"

#include <memory>

#include <windows.h>

EngineParts::EngineParts()
    : processor(nullptr, nullptr, nullptr, nullptr, 0),
      slot(std::auto_ptr<MException>(new MException))
{
    SetProcessAffinityMask(GetCurrentProcess(), 1);
    processor.Start();
}

EngineParts::~EngineParts()
{
    processor.Stop();
}

Comparison::Work EngineParts::Executing()
{
    return [this](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            processor.ExecuteSynchronously(
                std::auto_ptr<MCommandSynchronous>(new EmptyCommand(slot)));
    };
}
