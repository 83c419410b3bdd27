#include "foundation/MString.h"

#include <algorithm>
#include <cstdarg>
#include <cwchar>
#include <new>
#include <stdexcept>

namespace
{

[[noreturn]] void ThrowBadAlloc()
{
    throw std::bad_alloc();
}

} // namespace

MString::MString() : data(nullptr), length(0), capacity(0) {}

MString::MString(const wchar_t* text) : MString()
{
    if (text)
        Assign(text, static_cast<std::int64_t>(std::wcslen(text)));
}

MString::MString(const MString& other) : MString()
{
    Assign(other.data, other.length);
}

MString::MString(MString&& other) noexcept : MString()
{
    TakeOver(other);
}

MString::~MString()
{
    Release();
}

MString& MString::operator=(const MString& other)
{
    if (this == &other)
        return *this;
    if (other.IsEmpty()) {
        Release();
        return *this;
    }
    wchar_t* const fresh = Allocate(other.length, ThrowBadAlloc);
    std::copy_n(other.data, other.length, fresh);
    fresh[other.length] = L'\0';
    delete[] data;
    data = fresh;
    length = capacity = other.length;
    return *this;
}

MString& MString::operator=(MString&& other) noexcept
{
    if (this != &other) {
        Release();
        TakeOver(other);
    }
    return *this;
}

MString& MString::operator=(const wchar_t* text)
{
    return *this = MString(text);
}

MString& MString::operator+=(const MString& other)
{
    const std::int32_t added = other.length;
    Reserve(static_cast<std::uint32_t>(added));
    if (data && other.data) {
        std::copy_n(other.data, added, data + length);
        data[length + added] = L'\0';
    }
    length += added;
    return *this;
}

MString& MString::operator+=(const wchar_t* text)
{
    return *this += MString(text);
}

void MString::Reserve(std::uint32_t extra)
{
    const std::int64_t needed = std::int64_t{length} + extra;
    if (needed > capacity)
        Resize(needed, length);
}

int MString::Compare(const MString& a, const MString& b)
{
    if (a.IsEmpty())
        return b.IsEmpty() ? 0 : -1;
    if (b.IsEmpty())
        return 1;
    const int order = std::wcscmp(a.data, b.data);
    return (order > 0) - (order < 0);
}

std::int32_t MString::Find(const MString& needle, std::int32_t start) const
{
    if (needle.IsEmpty() || IsEmpty())
        return -1;
    wchar_t* const end = data + length;
    wchar_t* const found = std::search(data + start, end, needle.data, needle.data + needle.length);
    return found == end ? -1 : static_cast<std::int32_t>(found - data);
}

MString MString::Mid(std::int32_t start, std::int32_t count) const
{
    MString part;
    if (start < length && count > 0) {
        const std::int32_t taken = std::min(count, length - start);
        std::copy_n(data + start, taken, part.GetBuffer(taken, true));
        part.data[taken] = L'\0';
    }
    return part;
}

void MString::Format(const wchar_t* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const int measured = _vscwprintf(format, arguments);
    va_end(arguments);

    MString formatted;
    if (measured > 0) {
        va_start(arguments, format);
        _vsnwprintf(formatted.GetBuffer(measured, true), static_cast<std::size_t>(measured) + 1,
                    format, arguments);
        va_end(arguments);
    }
    *this = static_cast<MString&&>(formatted);
}

wchar_t* MString::GetBuffer(std::int32_t newLength, bool shrink)
{
    newLength = std::max(newLength, 0);
    if (!data || capacity < newLength || (capacity > newLength && shrink)) {
        // The caller may have written beyond the length, so the whole buffer counts as text.
        Resize(newLength, std::min(capacity, newLength));
        length = newLength;
    }
    return data;
}

/// The one place that sees an allocator answer null; `fail` raises what is to come of it.
wchar_t* MString::Allocate(std::int64_t capacity, void (*fail)())
{
    if (capacity > toEnd)
        throw std::length_error("MString");
    wchar_t* const fresh = new wchar_t[static_cast<std::size_t>(capacity) + 1];
    if (!fresh)
        fail();
    return fresh;
}

/// Fills an empty string.
void MString::Assign(const wchar_t* text, std::int64_t count)
{
    if (count == 0)
        return;
    data = Allocate(count, RaiseOutOfMemory);
    std::copy_n(text, count, data);
    data[count] = L'\0';
    length = capacity = static_cast<std::int32_t>(count);
}

void MString::Release()
{
    delete[] data;
    data = nullptr;
    length = capacity = 0;
}

void MString::TakeOver(MString& other)
{
    data = other.data;
    length = other.length;
    capacity = other.capacity;
    other.data = nullptr;
    other.length = other.capacity = 0;
}

/// Moves the text into an exact buffer and keeps its first `kept` characters.
void MString::Resize(std::int64_t newCapacity, std::int32_t kept)
{
    wchar_t* const fresh = Allocate(newCapacity, ThrowBadAlloc);
    std::copy_n(c_str(), kept, fresh);
    fresh[kept] = L'\0';
    delete[] data;
    data = fresh;
    capacity = static_cast<std::int32_t>(newCapacity);
}
