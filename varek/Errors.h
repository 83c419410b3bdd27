#pragma once

#include "foundation/MException.h"
#include "varek/Text.h"
#include "varek/Trace.h"

#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>

// Raising a failure with its details, and reading a chain of them:
//
//     varek::Raise(location.SetObject(this).SetLine(__LINE__), L"CannotOpen")
//         .With(L"path", path)
//         .WithLastError()
//         .Throw();
//
//     catch (MException& exception) {
//         if (varek::FindError(exception, L"CannotOpen")) ...
//         std::wcerr << varek::FullText(exception) << L"\n";
//     }
//
// In a function with a trace line, `VAREK_RAISE(L"CannotOpen")` is the same in short.

namespace varek
{

/// A number that is to be shown in hexadecimal digits, as many as its width has.
struct Hex {
    /// Any integer.
    template <class T>
    explicit Hex(T number)
        : bits(static_cast<typename std::make_unsigned<T>::type>(number)), digits(2 * sizeof(T))
    {
    }

    std::uint64_t bits; ///< the number
    std::size_t digits; ///< filled up with zeros
};

/// @{
/// A value as the text of a parameter, the same on every machine: integers in decimal, floating
/// numbers with as many digits as tell them apart, "true" and "false", a character as itself, a
/// pointer in sixteen hexadecimal digits. Narrow texts are taken for UTF-8; a null text is empty.
MString TextOf(bool value);
MString TextOf(char value);
MString TextOf(wchar_t value);
MString TextOf(long long value);
MString TextOf(unsigned long long value);
MString TextOf(float value);
MString TextOf(double value);
MString TextOf(long double value);
MString TextOf(Hex value);
MString TextOf(const void* value);
MString TextOf(const char* value);
MString TextOf(const wchar_t* value);
MString TextOf(const std::string& value);
MString TextOf(const std::wstring& value);
MString TextOf(TextView value);
/// @}

namespace detail
{

// Among several ways, the first that fits is taken.
struct LastChoice {
};
struct SecondChoice : LastChoice {
};
struct FirstChoice : SecondChoice {
};

template <class T, class... Others>
struct IsOneOf : std::false_type {
};

template <class T, class First, class... Others>
struct IsOneOf<T, First, Others...>
    : std::conditional<std::is_same<T, First>::value, std::true_type, IsOneOf<T, Others...>>::type {
};

template <class T>
using IsInteger = std::integral_constant<bool, std::is_integral<T>::value &&
                                                   !IsOneOf<T, bool, char, wchar_t>::value>;

template <class T>
using WidestInteger =
    typename std::conditional<std::is_signed<T>::value, long long, unsigned long long>::type;

template <class T>
typename std::enable_if<IsInteger<T>::value, MString>::type ParameterText(T value, FirstChoice)
{
    return TextOf(static_cast<WidestInteger<T>>(value));
}

template <class T>
typename std::enable_if<std::is_enum<T>::value, MString>::type ParameterText(T value, FirstChoice)
{
    return TextOf(static_cast<long long>(value));
}

template <class T>
auto ParameterText(const T& value, SecondChoice) -> decltype(TextOf(value))
{
    return TextOf(value);
}

template <class T>
MString ParameterText(const T&, LastChoice)
{
    static_assert(sizeof(T) == 0, "With takes numbers, pointers and texts: convert this value to "
                                  "one, or give its type a conversion to std::wstring");
    return MString();
}

} // namespace detail

/// A failure that is being put together. It stands in the log already; whoever makes one throws it.
class Failure
{
public:
    /// As `Raise`.
    Failure(MFlowLocation& location, const wchar_t* code);

    /// Adds a parameter: a number of any width, a bool, a pointer, a text, an enumeration, or
    /// whatever converts to one of them. The first value of a name stays.
    template <class T>
    Failure& With(const wchar_t* name, const T& value)
    {
        return Add(name, detail::ParameterText(value, detail::FirstChoice()));
    }

    /// Adds "winErrorCode", the calling thread's last error when the failure was raised.
    Failure& WithLastError();

    /// Adds "hresult", in hexadecimal.
    Failure& WithResult(long hresult);

    /// Throws an `MException` that holds the failure.
    [[noreturn]] void Throw();

private:
    Failure& Add(const wchar_t* name, const MString& value);

    MFlowLocation& location;
    MError error;
    unsigned long lastError;
};

/// Records a new failure at `location`, whose object and line are set, and begins to put it
/// together. `code` is a literal: its address names it in the log.
inline Failure Raise(MFlowLocation& location, const wchar_t* code)
{
    return Failure(location, code);
}

/// The same at a location that lasts until the end of the statement.
inline Failure Raise(MFlowLocation&& location, const wchar_t* code)
{
    return Failure(location, code);
}

/// Raises at the trace line of the function.
#define VAREK_RAISE(code)                                                                          \
    ::varek::Raise(::varek::detail::At(varekLocation, varekObject, __LINE__), code)

/// The errors of a chain, from the oldest cause to the newest failure, without those that are null:
///
///     for (const MError& error : varek::Errors(exception)) ...
///
/// It looks into the exception, which must stay.
class Errors
{
public:
    /// Goes forward through the chain.
    class Iterator
    {
    public:
        /// @{
        /// What is asked of iterators.
        typedef std::forward_iterator_tag iterator_category;
        typedef MError value_type;
        typedef std::ptrdiff_t difference_type;
        typedef const MError* pointer;
        typedef const MError& reference;

        Iterator(const MException* exception, std::int32_t index);
        const MError& operator*() const { return *exception->GetError(index); }
        const MError* operator->() const { return exception->GetError(index); }
        Iterator& operator++();
        Iterator operator++(int);
        bool operator==(const Iterator& other) const { return index == other.index; }
        bool operator!=(const Iterator& other) const { return index != other.index; }
        /// @}

    private:
        void SkipNull();

        const MException* exception;
        std::int32_t index;
    };

    /// @{
    /// From the oldest cause to the newest failure.
    explicit Errors(const MException& exception) : exception(&exception) {}
    Iterator begin() const { return Iterator(exception, 0); }
    Iterator end() const
    {
        return Iterator(exception, static_cast<std::int32_t>(exception->GetErrorCount()));
    }
    /// @}

private:
    const MException* exception;
};

/// The newest error of that Code, given whole or as the short code behind its colon; null when
/// there is none.
const MError* FindError(const MException& exception, TextView code);

/// The value of a parameter; empty when the error has none of that name.
MString ParameterOf(const MError& error, TextView name);

/// The whole chain in one line for logs, newest first, with the parameters:
/// "Kettle.Heat:Boils (temperature=100), caused by ...".
MString FullText(const MException& exception);

/// The same in UTF-8, and `what` of any other exception.
std::string What(const std::exception& exception);

/// Throws the exception that is being handled on as an `MException`: one that is none becomes a
/// failure of `location` with the Code "StandardException" and the parameters "what" and "type".
/// For use in a handler for `std::exception`.
[[noreturn]] void ThrowAsMException(MFlowLocation& location, const std::exception& exception);

namespace detail
{

inline MFlowLocation& At(MFlowLocation& location, const void* object, std::int32_t line)
{
    return location.SetObject(object).SetLine(line);
}

inline TracedLocation At(const UntracedLocation& location, const void* object, std::int32_t line)
{
    return {location.className, location.functionName, object, line};
}

} // namespace detail
} // namespace varek
