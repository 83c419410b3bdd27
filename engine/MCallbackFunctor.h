#pragma once

#include <memory>

/// A call to make later. There is no virtual destructor: whoever owns one frees it with plain
/// `operator delete`, so a subclass holds plain data only.
class MCallbackFunctor
{
public:
    /// Makes the call. What it raises is left to the one who invokes.
    virtual void Invoke() = 0;

protected:
    ~MCallbackFunctor() = default;
};

/// A call of a member function, virtual dispatch included. The target is not owned.
template <class X>
class MCallbackFunctorImp final : public MCallbackFunctor
{
public:
    /// `target` must be there when the call is made.
    MCallbackFunctorImp(X* target, void (X::*method)()) : target(target), method(method) {}

    void Invoke() override { (target->*method)(); }

private:
    X* target;
    void (X::*method)();
};

/// Frees a functor the way functors are freed.
struct MCallbackFunctorDelete {
    /// Runs no destructor. Null is fine.
    void operator()(MCallbackFunctor* functor) const { ::operator delete(functor); }
};

/// Owns a heap functor.
typedef std::unique_ptr<MCallbackFunctor, MCallbackFunctorDelete> MCallbackFunctorPtr;

/// A heap functor that calls `method` on `target`.
template <class X>
MCallbackFunctorPtr MakeFunctor(X* target, void (X::*method)())
{
    return MCallbackFunctorPtr(new MCallbackFunctorImp<X>(target, method));
}
