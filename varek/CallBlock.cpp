#include "varek/CallBlock.h"

#include "engine/MCommandProcessor.h"
#include "varek/Errors.h"

#include <memory>

#include <windows.h>

namespace varek
{
namespace detail
{

namespace
{

const wchar_t className[] = L"varek";

TracedLocation& CallLocation()
{
    static TracedLocation location(className, L"Call");
    return location;
}

[[noreturn]] void RaiseCallError(const wchar_t* code)
{
    Raise(CallLocation(), code).Throw();
}

const wchar_t* DropCode(const MCommandProcessor& processor, const CancelToken::Flag& cancelled)
{
    if (cancelled && *cancelled)
        return L"Cancelled";
    return processor.HasDied() ? L"ThreadExitedUnexpectedly" : L"CommandProcessingAborted";
}

[[noreturn]] void RethrowAsMException(const std::exception_ptr& failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (std::exception& exception) {
        ThrowAsMException(CallLocation(), exception);
    }
}

} // namespace

std::exception_ptr RunCaught(void (*work)(void* context), void* context) noexcept
{
    try {
        work(context);
    } catch (std::exception&) {
        return std::current_exception();
    }
    return nullptr;
}

CallBlock::CallBlock(Run run, Destroy destroy, CancelToken::Flag cancelled)
    : run(run), destroy(destroy), cancelled(std::move(cancelled)),
      completed(CreatePlatformEvent(EventReset::Automatic)), state(CallState::Queued), shares(1)
{
    static_assert(std::is_standard_layout<CallBlock>::value, "a block begins with its ticket");
}

CallBlock::~CallBlock()
{
    if (completed)
        CloseHandle(completed);
}

void CallBlock::Release()
{
    if (--shares == 0)
        destroy(this);
}

bool CallBlock::MoveOn(CallState from, CallState to)
{
    return state.compare_exchange_strong(from, to);
}

CallBlock::Ticket::~Ticket()
{
    Block().MoveOn(CallState::Queued, CallState::Dropped);
    SetEvent(Block().completed);
}

void CallBlock::Ticket::operator delete(void* ticket)
{
    static_cast<CallBlock*>(ticket)->Release();
}

// A call given up by its caller, or taken back, is passed over.
void CallBlock::Ticket::ExecuteGenericCommand()
{
    CallBlock& block = Block();
    const bool wanted = !block.cancelled || !*block.cancelled;
    if (!wanted || !block.MoveOn(CallState::Queued, CallState::Begun))
        return;
    block.failure = RunCaught(block.run, &block);
    block.state = CallState::Done;
}

bool CallBlock::Enqueue(MCommandProcessor& processor)
{
    ++shares;
    return processor.Queue(std::unique_ptr<MCommand>(new (&ticket) Ticket));
}

void CallBlock::RunOn(MCommandProcessor& processor, std::uint32_t timeoutMs)
{
    const MFlowScope scope(CallLocation().SetObject(&processor));
    if (processor.IsCurrentThread())
        RaiseCallError(L"OwnThread");
    if (!completed)
        Raise(CallLocation(), L"WaitFailed").WithLastError().Throw();

    const bool accepted = Enqueue(processor);
    const HANDLE handles[] = {completed, processor.GetEndedEvent()};
    const DWORD status = WaitForMultipleObjects(2, handles, FALSE, timeoutMs);
    if (state == CallState::Done) {
        if (failure)
            RethrowAsMException(failure);
        return;
    }
    if (status == WAIT_TIMEOUT)
        RaiseCallError(L"TimedOut");
    if (status == WAIT_OBJECT_0 && !accepted && !processor.HasDied())
        RaiseCallError(L"ProcessorStopped");
    if (status == WAIT_OBJECT_0)
        RaiseCallError(DropCode(processor, cancelled));

    MoveOn(CallState::Queued, CallState::Dropped);
    if (status == WAIT_OBJECT_0 + 1)
        RaiseCallError(processor.IsAborted() ? L"CommandProcessingAborted"
                                             : L"ThreadExitedUnexpectedly");
    Raise(CallLocation(), L"WaitFailed").WithLastError().Throw();
}

std::exception_ptr WhyDropped(const MCommandProcessor& processor,
                              const CancelToken::Flag& cancelled) noexcept
{
    try {
        RaiseCallError(DropCode(processor, cancelled));
    } catch (...) {
        return std::current_exception();
    }
}

std::exception_ptr AsMException(const std::exception_ptr& failure) noexcept
{
    try {
        RethrowAsMException(failure);
    } catch (...) {
        return std::current_exception();
    }
}

} // namespace detail
} // namespace varek
