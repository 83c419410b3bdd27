#pragma once

#include "foundation/MError.h"

#include <cstdint>
#include <exception>
#include <list>
#include <memory>

class MFilerTaggedPair;

/// The one exception type of the system: a chain of errors, from the oldest cause to the newest
/// failure.
///
///     catch (MException& exception) {
///         if (const MError* failure = exception.GetFailure())
///             ... failure->GetCode(), failure->GetParameters() ...
///         location.SetObject(this).SetLine(__LINE__).DismissError(exception);
///     }
///
/// `what` says nothing of the chain. Catch by reference; a handler that swallows the failure
/// records that with `DismissError`. An exception belongs to one thread at a time and crosses
/// threads as a copy. Building and copying allocate, and let allocation failures out.
class MException : public std::exception
{
public:
    /// An empty chain.
    MException();

    /// The chain that `error` carries, if it carries one, and then a clone of `error`.
    explicit MException(const MError& error);

    /// Clones every entry but the null ones.
    MException(const MException& other);
    ~MException() override;
    MException& operator=(const MException&) = delete;

    /// Appends a clone of `error`; a null entry when the clone could not be had.
    void AddError(const MError& error);

    /// Number of entries, null ones included.
    std::uint32_t GetErrorCount() const;

    /// The entry at `index`, counted from the first; still owned by the exception. Null when there
    /// is none, or when the entry itself is null.
    const MError* GetError(std::int32_t index) const;

    /// The failure itself, which is the last entry. Null when the chain is empty, or that entry is.
    const MError* GetFailure() const;

    /// Takes over what `temporary` holds and destroys the errors held so far. `temporary` must not
    /// be used afterwards. This is the way to assign.
    void TakeFrom(MException& temporary);

    /// Called by `DismissError`; does nothing.
    void Dismiss(const wchar_t* className, const wchar_t* functionName) const;

    /// Files the chain as a group under the tag, with the errors in it; in the registry, as one
    /// text value, which holds that as a document. False when that fails, and for a pair with only
    /// one of its two filers in the registry.
    bool Write(MFilerTaggedPair& filer, const MString& tagName) const;

    /// Reads what `Write` has filed under the tag, in place of the errors held so far. They come
    /// back as plain `MError` objects, whatever they were. False, with the chain as it was, when
    /// there is none. `defaultException` is not used.
    bool Read(MFilerTaggedPair& filer, const MString& tagName, const MException& defaultException);

    /// Files the errors one by one, each as a group "Error". False when one fails, which ends it,
    /// and over the registry, where such groups cannot be told apart.
    bool WriteErrors(MFilerTaggedPair& filer) const;

    /// Reads errors for as long as there are any, in place of those held so far, and answers true.
    /// Over the registry it answers false and changes nothing. `defaultException` is not used.
    bool ReadErrors(MFilerTaggedPair& filer, const MException& defaultException);

private:
    void Unfold(const MString& chainText);

    typedef std::list<std::unique_ptr<MError>> Chain;

    std::unique_ptr<Chain> chain; // absent only when its allocation answered null
};

/// Throws a copy of `exception`.
[[noreturn]] void ThrowException(const MException& exception);
