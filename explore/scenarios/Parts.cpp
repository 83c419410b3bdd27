#include "explore/scenarios/Parts.h"

#include "tests/support/Raised.h"

#include <process.h>
#include <windows.h>

Caller::Caller(std::function<void()> body) : body(std::move(body))
{
    unsigned id;
    thread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, Run, this, 0, &id));
}

Caller::~Caller()
{
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

unsigned __stdcall Caller::Run(void* caller)
{
    static_cast<Caller*>(caller)->body();
    return 0;
}

std::string Failure(const std::function<void()>& call)
{
    const std::string failure = Raised(call);
    return failure.substr(failure.rfind(':') + 1);
}

void Call::Make(MCommandProcessor& processor, const std::function<void()>& action)
{
    executed = 0;
    const Action counted = [&] {
        ++executed;
        action();
    };
    answer = Failure([&] { processor.ExecuteSynchronously(NewCommand(counted)); });
    if (answer.empty())
        return Expect(executed == 1, "executed " + std::to_string(executed) + " times");
    Expect(answer == "ProcessorStopped" || answer == "CommandProcessingAborted", answer);
    Expect(executed == 0, "executed, but told " + answer);
}

Processor::Processor(MCallbackFunctorPtr idle, std::uint32_t idleTimeoutMs)
    : MCommandProcessor(nullptr, nullptr, nullptr, idle.release(), idleTimeoutMs)
{
}
