#pragma once

#include "diagnostics/MFlowLocation.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Tracing in one line a class and one line a function:
//
//     class Kettle
//     {
//         VAREK_TRACED_CLASS(Kettle);
//
//         void Heat(unsigned degrees)
//         {
//             VAREK_TRACE(degrees); // recorded now, and when the function is left
//             if (temperature + degrees > 100)
//                 VAREK_RAISE(L"Boils").With(L"temperature", temperature).Throw(); //
//                 varek/Errors.h
//             ...
//
// It costs what a hand-written `MFlowLocation` and `MFlowScope` cost, instruction by instruction.
// Compiled with VAREK_TRACE_OFF the lines record nothing and cost nothing; failures are raised, and
// recorded, as ever.

/// Once in a class whose functions are traced: the name that the log shows, and that Codes begin
/// with. It stands in the section where it is written. A class derived from a traced one, and
/// traced itself, has a line of its own; otherwise it counts as its base.
#define VAREK_TRACED_CLASS(name)                                                                   \
    static const wchar_t* VarekClassName()                                                         \
    {                                                                                              \
        static const wchar_t literal[] = L"" #name;                                                \
        return literal;                                                                            \
    }                                                                                              \
    const void* VarekObject() const                                                                \
    {                                                                                              \
        return this;                                                                               \
    }                                                                                              \
    static_assert(true, "")

/// Once in a namespace, for its free functions; without it they have no class, and their Codes
/// begin with the function.
#define VAREK_TRACED_NAMESPACE(name)                                                               \
    inline const wchar_t* VarekClassName()                                                         \
    {                                                                                              \
        static const wchar_t literal[] = L"" #name;                                                \
        return literal;                                                                            \
    }                                                                                              \
    static_assert(true, "")

/// First in a function: records that it is entered, with up to two numbers, and that it is left.
/// Numbers, enumerations and pointers are recorded by their low 32 bits. The function's name is its
/// own; that of a lambda is "operator()".
///
/// In a member function of a traced class it records the object, in a free function none. A lambda
/// inside a member function has to capture `this`; one that does not, and a static member function,
/// use `VAREK_TRACE_STATIC`.
#define VAREK_TRACE(...) VAREK_TRACE_AT(VarekObject(), __VA_ARGS__)

/// The same without an object.
#define VAREK_TRACE_STATIC(...) VAREK_TRACE_AT(nullptr, __VA_ARGS__)

/// \cond
#define VAREK_TRACE_AT(object, ...)                                                                \
    VAREK_MAY_SHADOW static constexpr auto varekFunction = ::varek::detail::Widen(__func__);       \
    const void* const varekObject = object;                                                        \
    VAREK_TRACE_OPEN(__VA_ARGS__) VAREK_MAY_SHADOW_NO_MORE static_assert(true, "")

// The line of a lambda may stand inside the block of another.
#if defined __clang__
#define VAREK_MAY_SHADOW                                                                           \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wshadow-all\"")
#define VAREK_MAY_SHADOW_NO_MORE _Pragma("clang diagnostic pop")
#elif defined __GNUC__
#define VAREK_MAY_SHADOW                                                                           \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wshadow\"")                  \
        _Pragma("GCC diagnostic ignored \"-Wshadow=local\"")                                       \
            _Pragma("GCC diagnostic ignored \"-Wshadow=compatible-local\"")
#define VAREK_MAY_SHADOW_NO_MORE _Pragma("GCC diagnostic pop")
#else
#define VAREK_MAY_SHADOW
#define VAREK_MAY_SHADOW_NO_MORE
#endif

#ifndef VAREK_TRACE_OFF
#define VAREK_TRACE_OPEN(...)                                                                      \
    static ::varek::TracedLocation varekLocation(VarekClassName(), varekFunction.text);            \
    const ::varek::TracedScope varekScope(varekLocation.SetObject(varekObject),                    \
                                          ::varek::detail::Numbers(__VA_ARGS__));
#else
#define VAREK_TRACE_OPEN(...)                                                                      \
    const ::varek::detail::UntracedLocation varekLocation = {VarekClassName(),                     \
                                                             varekFunction.text};                  \
    static_cast<void>(varekLocation), static_cast<void>(varekObject);                              \
    static_cast<void>(sizeof(::varek::detail::Numbers{__VA_ARGS__}));
#endif
/// \endcond

/// @{
/// The object and the class of what is in neither.
inline const void* VarekObject()
{
    return nullptr;
}

inline const wchar_t* VarekClassName()
{
    return nullptr;
}
/// @}

namespace varek
{

/// A location that names its class in the log as well. `className` may be null.
class TracedLocation : public MFlowLocation
{
public:
    /// The literals are kept by address.
    TracedLocation(const wchar_t* className, const wchar_t* functionName);

    /// With object and line set.
    TracedLocation(const wchar_t* className, const wchar_t* functionName, const void* object,
                   std::int32_t line);
};

namespace detail
{

template <std::size_t size>
struct WideName {
    wchar_t text[size];
};

/// The name of a function, which the compiler gives as bytes, as the recorder wants it.
template <std::size_t size>
constexpr WideName<size> Widen(const char (&name)[size])
{
    WideName<size> wide{};
    for (std::size_t i = 0; i < size; ++i)
        wide.text[i] = static_cast<wchar_t>(name[i]);
    return wide;
}

template <class T>
std::uint32_t LowBits(T number)
{
    static_assert(std::is_integral<T>::value || std::is_enum<T>::value,
                  "a trace line records numbers, enumerations and pointers only");
    return static_cast<std::uint32_t>(number);
}

template <class T>
std::uint32_t LowBits(T* pointer)
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

/// The numbers of a trace line.
struct Numbers {
    Numbers() : a(0), b(0) {}

    template <class A>
    explicit Numbers(A a) : a(LowBits(a)), b(0)
    {
    }

    template <class A, class B>
    Numbers(A a, B b) : a(LowBits(a)), b(LowBits(b))
    {
    }

    template <class A, class B, class C, class... More>
    Numbers(A, B, C, More...) : a(0), b(0)
    {
        static_assert(sizeof(C) == 0, "a trace line records at most two numbers");
    }

    std::uint32_t a;
    std::uint32_t b;
};

/// Stands for a location where tracing is compiled out.
struct UntracedLocation {
    const wchar_t* className;
    const wchar_t* functionName;
};

} // namespace detail

/// The scope that a trace line opens.
class TracedScope : public MFlowScope
{
public:
    /// Opens it, with up to two numbers.
    TracedScope(MFlowLocation& location, const detail::Numbers& numbers)
        : MFlowScope(location, numbers.a, numbers.b)
    {
    }
};

} // namespace varek
