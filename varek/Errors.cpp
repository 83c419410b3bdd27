#include "varek/Errors.h"

#include "foundation/MLocale.h"

#include <iomanip>
#include <limits>
#include <sstream>
#include <typeinfo>
#include <utility>

#include <windows.h>

namespace varek
{

namespace
{

// No machine's settings group or translate digits, and a lack of memory does not cut them short.
template <class T>
MString Streamed(T value, int precision = 0)
{
    std::wostringstream text;
    text.exceptions(std::ios_base::badbit);
    text.imbue(MLocale::GetClassicLocale().GetStreamLocale());
    text << std::setprecision(precision) << value;
    return ToMString(text.str());
}

} // namespace

MString TextOf(bool value)
{
    return value ? L"true" : L"false";
}

MString TextOf(char value)
{
    return TextOf(std::string(1, value));
}

MString TextOf(wchar_t value)
{
    return ToMString(std::wstring(1, value));
}

MString TextOf(long long value)
{
    return Streamed(value);
}

MString TextOf(unsigned long long value)
{
    return Streamed(value);
}

MString TextOf(float value)
{
    return Streamed(value, std::numeric_limits<float>::max_digits10);
}

MString TextOf(double value)
{
    return Streamed(value, std::numeric_limits<double>::max_digits10);
}

MString TextOf(long double value)
{
    return Streamed(value, std::numeric_limits<long double>::max_digits10);
}

MString TextOf(Hex value)
{
    std::wstring text(value.digits, L'0');
    for (std::size_t place = value.digits; place-- > 0; value.bits >>= 4)
        text[place] = L"0123456789abcdef"[value.bits & 15];
    return ToMString(text + L"h");
}

MString TextOf(const void* value)
{
    return TextOf(Hex(reinterpret_cast<std::uintptr_t>(value)));
}

MString TextOf(const char* value)
{
    return TextOf(std::string(value ? value : ""));
}

MString TextOf(const wchar_t* value)
{
    return value;
}

MString TextOf(const std::string& value)
{
    return ToMString(FromUtf8(value));
}

MString TextOf(const std::wstring& value)
{
    return ToMString(value);
}

MString TextOf(TextView value)
{
    return ToMString(value);
}

// The last error is taken before anything can change it.
Failure::Failure(MFlowLocation& location, const wchar_t* code)
    : location(location), lastError(GetLastError())
{
    location.RaiseRootError(error, code);
}

Failure& Failure::WithLastError()
{
    return With(L"winErrorCode", lastError);
}

Failure& Failure::WithResult(long hresult)
{
    return With(L"hresult", Hex(hresult));
}

void Failure::Throw()
{
    location.Throw(error);
}

Failure& Failure::Add(const wchar_t* name, const MString& value)
{
    error.AddParameter(name, value);
    return *this;
}

Errors::Iterator::Iterator(const MException* exception, std::int32_t index)
    : exception(exception), index(index)
{
    SkipNull();
}

Errors::Iterator& Errors::Iterator::operator++()
{
    ++index;
    SkipNull();
    return *this;
}

Errors::Iterator Errors::Iterator::operator++(int)
{
    const Iterator before = *this;
    ++*this;
    return before;
}

void Errors::Iterator::SkipNull()
{
    while (static_cast<std::uint32_t>(index) < exception->GetErrorCount() &&
           !exception->GetError(index))
        ++index;
}

const MError* FindError(const MException& exception, TextView code)
{
    const MString wanted = ToMString(code);
    const MError* found = nullptr;
    for (const MError& error : Errors(exception)) {
        const MString& whole = error.GetCode();
        if (whole == wanted || whole.Mid(whole.Find(L":") + 1) == wanted)
            found = &error;
    }
    return found;
}

MString ParameterOf(const MError& error, TextView name)
{
    const auto found = error.GetParameters().find(ToMString(name));
    return found == error.GetParameters().end() ? MString() : found->second;
}

MString FullText(const MException& exception)
{
    std::wstring text;
    for (const MError& error : Errors(exception)) {
        std::wstring one = ToString(error.GetMessageText());
        const wchar_t* separator = L" (";
        for (const auto& parameter : error.GetParameters()) {
            one += separator + ToString(parameter.first) + L"=" + ToString(parameter.second);
            separator = L", ";
        }
        if (!error.GetParameters().empty())
            one += L")";
        if (!text.empty())
            one.append(L", caused by ").append(text);
        text = std::move(one);
    }
    return text.empty() ? MString(L"no error") : ToMString(text);
}

std::string What(const std::exception& exception)
{
    if (const auto* const ours = dynamic_cast<const MException*>(&exception))
        return ToUtf8(FullText(*ours));
    return exception.what();
}

void ThrowAsMException(MFlowLocation& location, const std::exception& exception)
{
    if (dynamic_cast<const MException*>(&exception))
        throw;
    Raise(location, L"StandardException")
        .With(L"what", exception.what())
        .With(L"type", typeid(exception).name())
        .Throw();
}

} // namespace varek
