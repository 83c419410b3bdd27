#pragma once

#include "xml/index/MXmlElementIndex.h"
#include "xml/parse/MXmlOpenElements.h"
#include "xml/scan/MXmlNodeScan.h"
#include "xml/scan/MXmlTagMap.h"

/// One run over a text that adds a record to an index for every element it finds. No finding stops
/// the run; the first one is left in words.
///
/// It has two stages. The map of a stretch of text tells where brackets are; then the run goes from
/// bracket to bracket. What is plain is taken as it is: a start tag, an end tag with the name of
/// the innermost open element, a comment without brackets. Everything else, and what goes beyond
/// the stretch, is left to `ScanXmlNode`, which defines what a node is.
class MXmlElementParser
{
public:
    /// Top-level elements become children of `startRecord`, which also takes the marks of what is
    /// ill-formed. The cursor stands at the front. `copy`, unless null, takes a copy of the text
    /// behind what it holds, while the text is at hand anyway.
    MXmlElementParser(MXmlElementIndex& elements, std::int32_t startRecord,
                      MXmlTokenCursor& freshCursor, std::wstring& firstFinding,
                      std::wstring* copy = nullptr);

    /// Once.
    void Run();

private:
    // A place among those that the map tells.
    using Brackets = const wchar_t* const*;

    void ForeseeRest(const wchar_t* at);
    void CopyUpTo(const wchar_t* end);
    const wchar_t* IndexStretch();
    bool MayGoOn(Brackets at) const;

    Brackets TakePlainNode(Brackets at);
    Brackets TakeStartTag(Brackets at);
    Brackets TakeEndTag(Brackets at);
    Brackets FindTagEnd(Brackets at) const;
    bool MayBeQuoted(const wchar_t* name, const wchar_t* close) const;
    bool IsEndTag(Brackets at, const wchar_t* name) const;
    static bool IsComment(const wchar_t* inside, const wchar_t* close);
    static std::int32_t TagLength(const wchar_t* start, const wchar_t* close)
    {
        return static_cast<std::int32_t>(close + 1 - start);
    }

    Brackets TakeNode(Brackets at);
    std::int32_t AddElement(std::int32_t start, std::int32_t length, std::uint32_t tagLengths);
    void OnStartTag();
    void OnEndTag();
    void OnIllFormedNode();
    void OnEndOfText();

    void Close(std::int32_t depth, std::int32_t start, std::int32_t length);
    void KeepChildren(MXmlOpenElement& element);
    void MarkIllFormed();

    void Dissolve(std::int32_t depth);
    void DissolveTag(MXmlElementRecord& record);
    void NoteUnclosed(std::int32_t depth);

    bool HasFinding() const { return !finding.empty(); }
    MXmlElementRecord& Record(std::int32_t record) { return index[record]; }
    std::wstring TokenName() const;

    MXmlElementIndex& index;
    MXmlTokenCursor& cursor;
    std::wstring& finding;
    std::wstring* const target;
    const wchar_t* const text;
    const wchar_t* const textEnd;
    const wchar_t* copied;
    MXmlNodeScan scan;
    MXmlTagMap map;
    MXmlOpenElements open;
    const std::uint32_t startLevel;
    const std::int32_t countBefore;
    bool wellFormed = true;
};
