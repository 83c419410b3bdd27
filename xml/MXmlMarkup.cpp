#include "xml/MXmlMarkup.h"
#include "xml/MXmlElementParser.h"
#include "xml/XmlRunSearch.h"

constexpr std::size_t MXmlMarkup::MaxTextLength;

MXmlMarkup::MXmlMarkup()
{
    LoadText(nullptr);
}

int MXmlMarkup::LoadText(const wchar_t* text)
{
    const std::size_t length = text ? TextLength(text) : 0;
    CheckLength(length);
    documentText.assign(text ? text : L"", length);
    errorText.clear();
    return ParseDocument();
}

int MXmlMarkup::ParseDocument()
{
    const std::wstring earlierText = errorText;
    ClearPosition();
    savedPositions.Clear();
    nextFreeIndex = 1;
    deletedHead = 0;
    GrowRecords(static_cast<std::int32_t>(documentText.size() / 64 + 8));
    records[0] = MXmlElementRecord();

    IndexDocument();
    ClearPosition();
    if (!earlierText.empty())
        errorText = errorText.empty() ? earlierText : earlierText + L", " + errorText;

    const std::int32_t root = records[0].firstChild;
    return !records[0].Has(XmlElementDocumentIllFormed) && root != 0 &&
           records[root].nextSibling == 0;
}

void MXmlMarkup::IndexDocument()
{
    if (documentText.empty()) {
        errorText = L"Empty document";
        return;
    }
    MXmlTokenCursor cursor = CursorAt(0);
    const std::int32_t root = ParseElements(0, cursor);
    records[0].length = static_cast<std::int32_t>(documentText.size());
    if (root == 0)
        errorText = L"No root element";
    else if (records[root].nextSibling != 0)
        errorText = L"Root element has sibling";
}

std::int32_t MXmlMarkup::ParseElements(std::int32_t startRecord, MXmlTokenCursor& cursor)
{
    errorText.clear();
    cursor.next = 0;
    return MXmlElementParser(*this, startRecord, cursor).Run();
}

bool MXmlMarkup::GrowRecords(std::int32_t count)
{
    const std::int64_t inUse = nextFreeIndex;
    records.Grow(count != 0 ? count : inUse + inUse / 2);
    return true;
}

bool MXmlMarkup::IsElement(std::int32_t record) const
{
    return record > 0 && record < nextFreeIndex && !records[record].Has(XmlElementDeleted);
}

// A guard for records that were deleted with what contains them: no attribute is set on an element
// whose text is gone.
bool MXmlMarkup::IsInDocument(std::int32_t record) const
{
    while (record != 0 && !records[record].Has(XmlElementDeleted))
        record = records[record].parent;
    return record == 0;
}
