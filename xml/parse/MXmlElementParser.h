#pragma once

#include "xml/index/MXmlElementIndex.h"
#include "xml/parse/MXmlOpenElements.h"
#include "xml/scan/MXmlNodeScan.h"
#include "xml/scan/MXmlTagMap.h"

/// One run over a text that adds a record to an index for every element it finds. No finding stops
/// the run; the first one is left in words.
///
/// It has two stages. The map of a stretch of text tells where brackets are; then the run goes from
/// bracket to bracket. A plain tag is taken as it is: from "<" to the next bracket, a ">" that no
/// quote hides, and if it is an end tag, with the name of the innermost open element. Everything
/// else, and what goes beyond the stretch, is left to `ScanXmlNode`, which defines what a node is.
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
    void CopyUpTo(std::int32_t offset);
    std::int32_t IndexStretch();
    std::int32_t TakePlainTag(const std::int32_t* brackets);
    std::int32_t TakeStartTag(const std::int32_t* brackets);
    bool MayBeQuoted(std::int32_t start, std::int32_t end) const;
    bool IsEndTag(const std::int32_t* brackets, std::int32_t nameStart) const;
    bool ClosesItself(std::int32_t start, std::int32_t close) const;
    void TakeNode(std::int32_t start);
    bool MayGoOn(const std::int32_t* brackets) const;

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
    std::int32_t copied = 0;
    const wchar_t* const text;
    MXmlNodeScan scan;
    MXmlTagMap map;
    MXmlOpenElements open;
    std::uint32_t startLevel;
};
