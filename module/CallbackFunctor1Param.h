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
    virtual void operator()(T parameter) = 0;
    virtual ~CallbackFunctor1Param() {}
};

} // namespace Runtime
} // namespace Varek
