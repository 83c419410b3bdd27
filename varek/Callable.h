#pragma once

#include <type_traits>
#include <utility>

namespace varek
{
namespace detail
{

struct NoResult {
};

template <class F>
auto ResultOf(int) -> decltype(std::declval<F&>()());
template <class F>
NoResult ResultOf(...);

/// What a function without arguments returns; says so where `F` is none.
template <class F>
struct Callable {
    typedef decltype(ResultOf<F>(0)) type;

    static_assert(!std::is_same<type, NoResult>::value,
                  "what is called takes no arguments: capture what it needs in a lambda");
};

template <class F>
using CallResult = typename Callable<typename std::remove_reference<F>::type>::type;

} // namespace detail
} // namespace varek
