#pragma once

#include "xml/index/MXmlElementIndex.h"
#include "xml/parse/MXmlOpenElements.h"
#include "xml/scan/MXmlNodeScan.h"

/// One run over a text that adds a record to an index for every element it finds. No finding stops
/// the run; the first one is left in words.
class MXmlElementParser
{
public:
    /// Top-level elements become children of `startRecord`, which also takes the marks of what is
    /// ill-formed. The cursor stands at the front.
    MXmlElementParser(MXmlElementIndex& elements, std::int32_t startRecord,
                      MXmlTokenCursor& freshCursor, std::wstring& firstFinding);

    /// Answers the record of the first element, 0 if there is none.
    std::int32_t Run();

private:
    bool ClosesTop();
    void OnStartTag();
    void OnEndTag();
    void OnIllFormedNode();
    void OnEndOfText();

    void Close(std::int32_t depth);
    void KeepChildren(MXmlOpenElement& element);
    void MarkIllFormed();

    void Dissolve(std::int32_t depth);
    void DissolveTag(MXmlElementRecord& record);
    void NoteUnclosed(std::int32_t depth);

    bool HasFinding() const { return !finding.empty(); }
    MXmlElementRecord& Record(std::int32_t record) { return index[record]; }
    std::wstring TokenName() const;
    std::wstring OpenName(const MXmlOpenElement& element) const;

    MXmlElementIndex& index;
    MXmlTokenCursor& cursor;
    std::wstring& finding;
    MXmlNodeScan scan;
    MXmlOpenElements open;
    std::uint32_t startLevel;
};
