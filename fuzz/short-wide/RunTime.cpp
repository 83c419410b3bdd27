// The wide functions of the C run time for characters of 16 bits, as far as the document engine,
// its proofs and `std::wstring` need them: those of the build machine are made for 32. They are
// seen by the executable alone, which they are linked into as a whole.

#include "fuzz/short-wide/RunTime.h"

#include <cstdarg>
#include <cstddef>
#include <cstdlib>

static_assert(sizeof(wchar_t) == 2, "to be compiled with -fshort-wchar");

namespace
{

wchar_t Same(wchar_t c)
{
    return c;
}

wchar_t Fold(wchar_t c)
{
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

int Compare(const wchar_t* left, const wchar_t* right, std::size_t count, bool toZero,
            wchar_t (*map)(wchar_t))
{
    for (; count > 0; --count, ++left, ++right) {
        if (map(*left) != map(*right))
            return map(*left) < map(*right) ? -1 : 1;
        if (toZero && *left == 0)
            return 0;
    }
    return 0;
}

int Digit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    return Fold(c) >= L'a' && Fold(c) <= L'z' ? Fold(c) - L'a' + 10 : 99;
}

} // namespace

#pragma GCC visibility push(hidden)
extern "C" {

std::size_t wcslen(const wchar_t* text)
{
    std::size_t length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

wchar_t* wmemcpy(wchar_t* to, const wchar_t* from, std::size_t count)
{
    return static_cast<wchar_t*>(__builtin_memcpy(to, from, count * sizeof(wchar_t)));
}

wchar_t* wmemmove(wchar_t* to, const wchar_t* from, std::size_t count)
{
    return static_cast<wchar_t*>(__builtin_memmove(to, from, count * sizeof(wchar_t)));
}

wchar_t* wmemset(wchar_t* to, wchar_t c, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        to[i] = c;
    return to;
}

const wchar_t* wmemchr(const wchar_t* text, wchar_t c, std::size_t count)
{
    for (; count > 0; --count, ++text) {
        if (*text == c)
            return text;
    }
    return nullptr;
}

int wmemcmp(const wchar_t* left, const wchar_t* right, std::size_t count)
{
    return Compare(left, right, count, false, Same);
}

int wcsncmp(const wchar_t* left, const wchar_t* right, std::size_t count)
{
    return Compare(left, right, count, true, Same);
}

int _wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count)
{
    return Compare(left, right, count, true, Fold);
}

const wchar_t* wcschr(const wchar_t* text, wchar_t c)
{
    return wmemchr(text, c, wcslen(text) + 1);
}

const wchar_t* wcsstr(const wchar_t* text, const wchar_t* wanted)
{
    for (; *text != 0; ++text) {
        if (wcsncmp(text, wanted, wcslen(wanted)) == 0)
            return text;
    }
    return nullptr;
}

// Without signs, white space and the prefix "0x", which nobody here asks for.
long wcstol(const wchar_t* text, wchar_t** end, int base)
{
    long value = 0;
    for (; Digit(*text) < base; ++text)
        value = value * base + Digit(*text);
    if (end)
        *end = const_cast<wchar_t*>(text);
    return value;
}

// What `std::to_wstring` asks for: a number as it is.
int vswprintf(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list arguments)
{
    const bool isInt = format[0] == L'%' && format[1] == L'd' && format[2] == 0;
    if (!isInt || size < 16)
        std::abort();
    const int value = va_arg(arguments, int);
    wchar_t reversed[16];
    int digits = 0;
    for (unsigned rest = value < 0 ? 0u - static_cast<unsigned>(value)
                                   : static_cast<unsigned>(value);
         rest != 0 || digits == 0; rest /= 10)
        reversed[digits++] = static_cast<wchar_t>(L'0' + rest % 10);
    if (value < 0)
        reversed[digits++] = L'-';
    for (int i = 0; i < digits; ++i)
        to[i] = reversed[digits - 1 - i];
    to[digits] = 0;
    return digits;
}
}
#pragma GCC visibility pop
