#pragma once

#include <cstdint>

/// The framework's wide string: a counted, exact-fit buffer of 16-bit units, neither shared nor
/// given room to grow. It is small and simple to own, and slow to append to.
///
/// A character is one 16-bit unit; lengths and positions count them. A string belongs to one thread
/// at a time. A failing allocation raises std::bad_alloc, or, in the constructors, an `MException`
/// with an `MErrorOutOfMemory` when the allocator answers null; a text of more than 2,147,483,647
/// characters raises std::length_error. The string is then as it was.
class MString
{
public:
    /// Stands for "up to the end" as the count of `Mid`.
    static const std::int32_t toEnd = 2147483647;

    MString();

    /// Copies a null-terminated text; a null text gives the empty string.
    MString(const wchar_t* text);

    /// A copy with a buffer of its own.
    MString(const MString& other);

    /// Takes the buffer over; `other` is empty afterwards.
    MString(MString&& other) noexcept;
    ~MString();

    /// Replaces the text. The old buffer goes even where it would do.
    MString& operator=(const MString& other);

    /// Takes the buffer over; `other` is empty afterwards.
    MString& operator=(MString&& other) noexcept;

    /// Copies a null-terminated text; a null text gives the empty string.
    MString& operator=(const wchar_t* text);

    /// Appends, reallocating where no room was reserved. A string may be appended to itself.
    MString& operator+=(const MString& other);

    /// Appends a null-terminated text; a null text adds nothing.
    MString& operator+=(const wchar_t* text);

    /// Makes room for `extra` more characters. The length stays.
    void Reserve(std::uint32_t extra);

    /// The null-terminated text, never null, valid until the string changes.
    const wchar_t* c_str() const { return data ? data : L""; }

    /// The character at a position, 0 to the length, where the terminator stands. For writing there
    /// is `GetBuffer`.
    wchar_t operator[](std::int32_t position) const { return c_str()[position]; }

    /// Number of characters without the terminator.
    std::int32_t GetLength() const { return length; }

    /// Length up to which the buffer lasts, terminator not counted.
    std::int32_t GetCapacity() const { return capacity; }

    /// Whether the length is 0.
    bool IsEmpty() const { return length == 0; }

    /// -1, 0 or 1, by 16-bit unit; the empty string comes first. No locale, no folding of case.
    static int Compare(const MString& a, const MString& b);

    /// Position of the first `needle` at or after `start` (0 to the length), or -1. An empty
    /// needle is found nowhere.
    std::int32_t Find(const MString& needle, std::int32_t start = 0) const;

    /// At most `count` characters from `start`, which must not be negative.
    MString Mid(std::int32_t start, std::int32_t count = toEnd) const;

    /// Replaces the string by printf-style text in the C run time's current locale. A failing
    /// format, or one that yields nothing, empties it. The old text may be among the arguments.
    void Format(const wchar_t* format, ...);

    /// The buffer, for writing up to `newLength` characters and a terminator; a negative length
    /// counts as 0. A buffer that is large enough is left alone, length included, unless it is
    /// larger and `shrink` is true; a new one has both length and capacity `newLength`.
    wchar_t* GetBuffer(std::int32_t newLength, bool shrink);

private:
    static wchar_t* Allocate(std::int64_t capacity, void (*fail)());

    void Assign(const wchar_t* text, std::int64_t count);
    void Release();
    void TakeOver(MString& other);
    void Resize(std::int64_t newCapacity, std::int32_t kept);

    wchar_t* data;
    std::int32_t length;
    std::int32_t capacity;
};

/// The order of `MString::Compare`, for ordered containers.
struct MStringLess {
    /// Whether `a` comes before `b`.
    bool operator()(const MString& a, const MString& b) const { return MString::Compare(a, b) < 0; }
};

/// Raises an `MException` that holds an `MErrorOutOfMemory`, or std::bad_alloc when even that
/// cannot be built.
[[noreturn]] void RaiseOutOfMemory();
