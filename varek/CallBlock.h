#pragma once

#include "engine/MCommand.h"
#include "engine/PlatformEvent.h"
#include "varek/CancelToken.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <future>
#include <new>
#include <type_traits>
#include <utility>

class MCommandProcessor;

namespace varek
{
namespace detail
{

/// What became of a call.
enum class CallState { Queued, Begun, Done, Dropped };

/// Runs the work that `context` stands for. A failure of any standard kind is the answer, null when
/// there was none.
std::exception_ptr RunCaught(void (*work)(void* context), void* context) noexcept;

/// A call on its way through the queue of a processor, in one block of memory that both the queue
/// and the caller own, since either may be the last to need it.
///
/// The queue holds the ticket, which is the first thing in the block. Its destructor says that the
/// queue is done with the call, however that came; freeing it gives the queue's share back.
struct CallBlock {
    /// The queue's end of the block.
    struct Ticket final : MCommand {
        ~Ticket() override;
        void ExecuteGenericCommand() override;
        static void operator delete(void* ticket);
        CallBlock& Block() { return *reinterpret_cast<CallBlock*>(this); }
    };

    typedef void (*Run)(void* block);
    typedef void (*Destroy)(CallBlock* block);

    CallBlock(Run run, Destroy destroy, CancelToken::Flag cancelled);
    CallBlock(const CallBlock&) = delete;
    CallBlock& operator=(const CallBlock&) = delete;
    ~CallBlock();

    /// Has the call run on the processor and returns when it is done. Raises its failure, or why it
    /// was not done; see varek/Call.h.
    void RunOn(MCommandProcessor& processor, std::uint32_t timeoutMs);

    /// Gives one share back.
    void Release();

    bool Enqueue(MCommandProcessor& processor);
    bool MoveOn(CallState from, CallState to);

    std::aligned_storage<sizeof(Ticket), alignof(Ticket)>::type ticket;
    Run run;
    Destroy destroy;
    CancelToken::Flag cancelled; // null for none
    HANDLE completed;
    std::exception_ptr failure;
    std::atomic<CallState> state;
    std::atomic<int> shares;
};

/// What a function gave back, of whatever kind.
template <class R>
class Result
{
public:
    Result() : filled(false) {}
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;
    ~Result()
    {
        if (filled)
            Value().~R();
    }

    template <class F>
    void FillFrom(F& function)
    {
        new (&storage) R(function());
        filled = true;
    }
    R Take() { return std::move(Value()); }

private:
    R& Value() { return *reinterpret_cast<R*>(&storage); }

    typename std::aligned_storage<sizeof(R), alignof(R)>::type storage;
    bool filled;
};

template <class R>
class Result<R&>
{
public:
    template <class F>
    void FillFrom(F& function)
    {
        value = &function();
    }
    R& Take() { return *value; }

private:
    R* value = nullptr;
};

template <>
class Result<void>
{
public:
    template <class F>
    void FillFrom(F& function)
    {
        function();
    }
    void Take() {}
};

/// The block of a call of a function of type `F`, a reference where the caller keeps it.
template <class F, class R>
struct CallBlockOf : CallBlock {
    CallBlockOf(F&& function, const CancelToken::Flag& cancelled)
        : CallBlock(RunThis, DestroyThis, cancelled), function(std::forward<F>(function))
    {
    }

    static void RunThis(void* block)
    {
        CallBlockOf& self = *static_cast<CallBlockOf*>(static_cast<CallBlock*>(block));
        self.result.FillFrom(self.function);
    }
    static void DestroyThis(CallBlock* block) { delete static_cast<CallBlockOf*>(block); }

    F function;
    Result<R> result;
};

/// The caller's share in a block.
template <class Block>
class CallShare
{
public:
    explicit CallShare(Block* block) : block(block) {}
    CallShare(const CallShare&) = delete;
    CallShare& operator=(const CallShare&) = delete;
    ~CallShare() { block->Release(); }
    Block* operator->() const { return block; }

private:
    Block* block;
};

/// The failure of a call that was dropped, as a waiting caller would get it.
std::exception_ptr WhyDropped(const MCommandProcessor& processor,
                              const CancelToken::Flag& cancelled) noexcept;

/// The failure as an `MException`, or itself where there is no memory for that.
std::exception_ptr AsMException(const std::exception_ptr& failure) noexcept;

template <class F>
void Fulfil(std::promise<void>& promise, F& function)
{
    function();
    promise.set_value();
}

template <class F, class R>
void Fulfil(std::promise<R>& promise, F& function)
{
    promise.set_value(function());
}

/// A call whose outcome goes into a future.
template <class F, class R>
class AsyncCall final : public MCommand
{
public:
    template <class Given>
    AsyncCall(const MCommandProcessor& processor, Given&& function,
              const CancelToken::Flag& cancelled)
        : processor(processor), function(std::forward<Given>(function)), cancelled(cancelled),
          told(false)
    {
    }

    // Not run: dropped.
    ~AsyncCall() override
    {
        if (!told)
            promise.set_exception(WhyDropped(processor, cancelled));
    }

    void ExecuteGenericCommand() override
    {
        if (cancelled && *cancelled)
            return;
        told = true;
        if (const std::exception_ptr failure = RunCaught(RunThis, this))
            promise.set_exception(AsMException(failure));
    }

    std::future<R> GetFuture() { return promise.get_future(); }

private:
    static void RunThis(void* call)
    {
        AsyncCall& self = *static_cast<AsyncCall*>(call);
        Fulfil(self.promise, self.function);
    }

    const MCommandProcessor& processor; // whose queue it is dropped from
    F function;
    CancelToken::Flag cancelled;
    std::promise<R> promise;
    bool told;
};

} // namespace detail
} // namespace varek
