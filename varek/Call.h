#pragma once

#include "engine/MCommandProcessor.h"
#include "module/ModuleCommandProcessor.h"
#include "varek/Callable.h"
#include "varek/CallBlock.h"

#include <chrono>

// Work for a command processor, written where it is needed:
//
//     const unsigned level = varek::Call([&] { return pump.Drain(litres); });
//     std::future<Report> report = varek::CallAsync([path] { return Survey(path); });
//     varek::CallFor(std::chrono::seconds(2), [path] { Upload(path); });
//
// Without a processor in front, the module's own is meant, which is started if need be. With a
// `CancelToken` behind, the call can be taken back.
//
// Threads: the function runs on the processor thread, in its turn, with nothing else of that
// processor beside it. Any other thread may call.
//
// Failure: what the function raises comes out of the call (out of the future for `CallAsync`), an
// `MException` as the chain that it is; any other standard exception as an `MException` with the
// Code "varek.Call:StandardException" and the parameters "what" and "type". What is neither ends
// the process, as everywhere on an engine thread. Of its own a call raises, always with
// "varek.Call":
//
// | short code | when |
// |---|---|
// | "OwnThread" | a waiting call from the processor's own thread, where it would wait for itself |
// | "ProcessorStopped" | the processor had been stopped before |
// | "CommandProcessingAborted" | it was stopped before the function's turn came |
// | "ThreadExitedUnexpectedly" | its thread has died; the function will not run any more |
// | "Cancelled" | the token was cancelled before the function's turn came |
// | "TimedOut" | `CallFor` has waited long enough |
//
// and exhausted memory as it comes. A function is run once or not at all.

namespace varek
{

namespace detail
{

template <class Duration>
std::uint32_t Milliseconds(Duration duration)
{
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
    const auto longest = static_cast<long long>(waitForEver) - 1;
    return static_cast<std::uint32_t>(whole < 0 ? 0 : whole > longest ? longest : whole);
}

inline MCommandProcessor& ModuleProcessor()
{
    return *ModuleCommandProcessor::GetInstance().GetCommandProcessor();
}

template <class F>
CallResult<F> CallWithin(std::uint32_t timeoutMs, MCommandProcessor& processor, F&& function,
                         const CancelToken::Flag& cancelled)
{
    typedef CallBlockOf<F, CallResult<F>> Block;
    const CallShare<Block> block(new Block(std::forward<F>(function), cancelled));
    block->RunOn(processor, timeoutMs);
    return block->result.Take();
}

template <class F>
CallResult<F> CallOwning(std::uint32_t timeoutMs, MCommandProcessor& processor, F&& function,
                         const CancelToken::Flag& cancelled)
{
    typedef typename std::decay<F>::type Owned;
    static_assert(!std::is_reference<CallResult<F>>::value,
                  "a call that may be given up returns a value, or a pointer if that is meant");
    return CallWithin<Owned>(timeoutMs, processor, Owned(std::forward<F>(function)), cancelled);
}

template <class F>
std::future<CallResult<F>> CallAsync(MCommandProcessor& processor, F&& function,
                                     const CancelToken::Flag& cancelled)
{
    typedef CallResult<F> R;
    static_assert(!std::is_reference<R>::value,
                  "the future of a call would hold a reference into the processor's thread: return "
                  "a value, or a pointer if that is meant");
    typedef AsyncCall<typename std::decay<F>::type, R> Command;
    std::unique_ptr<Command> command(new Command(processor, std::forward<F>(function), cancelled));
    std::future<R> future = command->GetFuture();
    processor.Queue(std::move(command));
    return future;
}

} // namespace detail

/// @{
/// Runs the function and gives back what it returns. The caller waits, so the function may refer to
/// what is the caller's. Takes one allocation.
template <class F>
detail::CallResult<F> Call(MCommandProcessor& processor, F&& function)
{
    return detail::CallWithin<F>(waitForEver, processor, std::forward<F>(function), nullptr);
}

template <class F>
detail::CallResult<F> Call(MCommandProcessor& processor, F&& function, const CancelToken& token)
{
    return detail::CallWithin<F>(waitForEver, processor, std::forward<F>(function),
                                 token.GetFlag());
}

template <class F>
detail::CallResult<F> Call(F&& function)
{
    return Call(detail::ModuleProcessor(), std::forward<F>(function));
}

template <class F>
detail::CallResult<F> Call(F&& function, const CancelToken& token)
{
    return Call(detail::ModuleProcessor(), std::forward<F>(function), token);
}
/// @}

/// @{
/// The same, but raises "TimedOut" when the function is not done in time. It is left alone then: it
/// runs, or goes on running, its result is dropped and its failure too. So it must own what it
/// refers to: capture by value. Its captures are destroyed by whoever is done last.
template <class Rep, class Period, class F>
detail::CallResult<F> CallFor(std::chrono::duration<Rep, Period> duration,
                              MCommandProcessor& processor, F&& function)
{
    return detail::CallOwning(detail::Milliseconds(duration), processor, std::forward<F>(function),
                              nullptr);
}

template <class Rep, class Period, class F>
detail::CallResult<F> CallFor(std::chrono::duration<Rep, Period> duration,
                              MCommandProcessor& processor, F&& function, const CancelToken& token)
{
    return detail::CallOwning(detail::Milliseconds(duration), processor, std::forward<F>(function),
                              token.GetFlag());
}

template <class Rep, class Period, class F>
detail::CallResult<F> CallFor(std::chrono::duration<Rep, Period> duration, F&& function)
{
    return CallFor(duration, detail::ModuleProcessor(), std::forward<F>(function));
}

template <class Rep, class Period, class F>
detail::CallResult<F> CallFor(std::chrono::duration<Rep, Period> duration, F&& function,
                              const CancelToken& token)
{
    return CallFor(duration, detail::ModuleProcessor(), std::forward<F>(function), token);
}
/// @}

/// @{
/// Queues the function and returns at once, also on the processor's own thread. The function, which
/// owns what it refers to, is destroyed on the processor thread, or by whoever drops it.
///
/// The future becomes ready when the function has run or been dropped. A processor drops what it
/// could not run when it is stopped or destroyed, with "CommandProcessingAborted", and when its
/// thread dies, with "ThreadExitedUnexpectedly"; where that had happened before, the future is
/// ready at once. A future that is let go of waits for nothing.
template <class F>
std::future<detail::CallResult<F>> CallAsync(MCommandProcessor& processor, F&& function)
{
    return detail::CallAsync(processor, std::forward<F>(function), nullptr);
}

template <class F>
std::future<detail::CallResult<F>> CallAsync(MCommandProcessor& processor, F&& function,
                                             const CancelToken& token)
{
    return detail::CallAsync(processor, std::forward<F>(function), token.GetFlag());
}

template <class F>
std::future<detail::CallResult<F>> CallAsync(F&& function)
{
    return CallAsync(detail::ModuleProcessor(), std::forward<F>(function));
}

template <class F>
std::future<detail::CallResult<F>> CallAsync(F&& function, const CancelToken& token)
{
    return CallAsync(detail::ModuleProcessor(), std::forward<F>(function), token);
}
/// @}

} // namespace varek
