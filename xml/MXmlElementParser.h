#pragma once

#include "xml/MXmlNodeScan.h"
#include "xml/MXmlOpenElements.h"
#include "xml/MXmlRecordStore.h"

class MXmlMarkup;

/// One run over a text that adds a record to a document for every element it finds. No finding
/// stops the run; the first one is left in the document's error text.
class MXmlElementParser
{
public:
    /// Top-level elements become children of `startRecord`, which also takes the marks of what is
    /// ill-formed. The cursor stands at the front.
    MXmlElementParser(MXmlMarkup& markup, std::int32_t startRecord, MXmlTokenCursor& freshCursor);

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

    void Note(const std::wstring& finding);
    bool HasFinding() const;
    MXmlElementRecord& Record(std::int32_t index) { return records[index]; }
    std::wstring TokenName() const;
    std::wstring OpenName(const MXmlOpenElement& element) const;

    MXmlMarkup& document;
    MXmlRecordStore& records;
    MXmlTokenCursor& cursor;
    MXmlNodeScan scan;
    MXmlOpenElements open;
    std::uint32_t startLevel;
};
