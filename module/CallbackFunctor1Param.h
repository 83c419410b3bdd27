#pragma once

namespace Varek
{
namespace Runtime
{

/// A callback of the host with one parameter. The host derives from it and gives it away; the
/// module calls it and deletes it.
template <class T>
class CallbackFunctor1Param
{
public:
    /// When it is called, and on which thread, is said where it is given away.
    virtual void operator()(T parameter) = 0;
    virtual ~CallbackFunctor1Param() {}
};

} // namespace Runtime
} // namespace Varek
