#pragma once

#include <cstddef>
#include <cstdint>

/// Where the brackets of a stretch of text are. Stage one of a parse: it looks at all characters
/// alike, 64 at a time, and knows nothing of nodes; what it tells lets the second stage go from tag
/// to tag without looking at what lies between.
class MXmlTagMap
{
public:
    /// Characters in a stretch, unless the text ends before: few enough for the nearest cache.
    static constexpr std::ptrdiff_t Stretch = 4096;

    /// For a text that must outlive the map, and ends with a zero there.
    explicit MXmlTagMap(const wchar_t* end) : textEnd(end) {}

    /// Maps the stretch that begins there, in place of the one before.
    void Draw(const wchar_t* from);

    /// The first character of the stretch.
    const wchar_t* Begin() const { return begin; }

    /// Right behind the last.
    const wchar_t* End() const { return end; }

    /// All "<" and ">" of the stretch in order, and then three times `End`.
    const wchar_t* const* Brackets() const { return brackets; }

private:
    static constexpr std::ptrdiff_t BlockLength = 64;
    static constexpr std::int32_t Together = 4;

    static std::uint64_t Look(const wchar_t* at);
    std::uint64_t LookAtRest(const wchar_t* at) const;
    static const wchar_t** TakeOut(const wchar_t* at, std::uint64_t bits, const wchar_t** out);

    const wchar_t* const textEnd;
    const wchar_t* begin = nullptr;
    const wchar_t* end = nullptr;
    const wchar_t* brackets[Stretch + Together];
};
