#pragma once

#include <atomic>
#include <memory>

namespace varek
{

/// Takes back what has been asked for. Copies are the same token; any thread may hold one.
///
///     varek::CancelToken token;
///     std::future<void> done = varek::CallAsync([token] {
///         while (!token.IsCancelled() && ScanNext()) {}
///     }, token);
///     token.Cancel();
///
/// A call that was given a token and has not begun when its turn comes is dropped, and whoever
/// waits for it gets "Cancelled". One that has begun goes on, and may ask.
class CancelToken
{
public:
    /// What the copies of a token share.
    typedef std::shared_ptr<const std::atomic<bool>> Flag;

    /// A new token. std::bad_alloc.
    // By make_shared, GCC 12 can take `Cancel` for a write beyond the end, and warns.
    CancelToken() : cancelled(new std::atomic<bool>(false)) {}

    /// Once and for all.
    void Cancel() const { *cancelled = true; }

    /// Whether `Cancel` has been called.
    bool IsCancelled() const { return *cancelled; }

    /// For those who only look.
    Flag GetFlag() const { return cancelled; }

private:
    std::shared_ptr<std::atomic<bool>> cancelled;
};

} // namespace varek
