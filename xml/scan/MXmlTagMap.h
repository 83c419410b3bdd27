#pragma once

#include <cstdint>

/// Where the brackets of a stretch of text are. Stage one of a parse: it looks at all characters
/// alike, 64 at a time, and knows nothing of nodes; what it tells lets the second stage go from tag
/// to tag without looking at what lies between.
class MXmlTagMap
{
public:
    /// Characters in a stretch, unless the text ends before: few enough for the nearest cache.
    static constexpr std::int32_t Stretch = 4096;

    /// For a text that must outlive the map.
    MXmlTagMap(const wchar_t* source, std::int32_t sourceLength)
        : text(source), length(sourceLength)
    {
    }

    /// Maps the stretch that begins at `from`, in place of the one before.
    void Draw(std::int32_t from);

    /// Offset of the stretch.
    std::int32_t Begin() const { return begin; }

    /// Offset right behind it.
    std::int32_t End() const { return end; }

    /// The offsets of all "<" and ">" of the stretch in order, and then three times `End`.
    const std::int32_t* Brackets() const { return brackets; }

private:
    static constexpr std::int32_t BlockLength = 64;
    static constexpr std::int32_t Together = 4;

    static std::uint64_t Look(const wchar_t* at);
    std::uint64_t LookAtRest(std::int32_t at) const;
    static std::int32_t* TakeOut(std::int32_t at, std::uint64_t bits, std::int32_t* out);

    const wchar_t* text;
    std::int32_t length;
    std::int32_t begin = 0;
    std::int32_t end = 0;
    std::int32_t brackets[Stretch + Together];
};
