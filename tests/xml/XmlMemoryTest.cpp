#include "tests/support/Allocations.h"
#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

// Long enough that names, messages and texts take memory of their own; ill-formed, and deep enough
// for the index of open elements.
std::wstring LongText()
{
    const std::wstring name = L"a_name_that_takes_memory_of_its_own";
    std::wstring text = L"<" + name + L">";
    for (int i = 0; i < 40; ++i)
        text += L"<b" + std::to_wstring(i) + L">";
    return text + L"</c></" + name + L">";
}

void Edit(MXmlMarkup& document)
{
    const std::wstring value(100, L'&');
    document.FindElement();
    document.SavePosition(L"a name that takes memory of its own");
    for (int i = 0; i < 20; ++i)
        document.SavePosition(std::to_wstring(i).c_str());
    document.SetAttribute(document.GetMainIndex(), L"value", value.c_str());
    for (int i = 0; i < 20; ++i)
        document.AddElement(L"element", value.c_str(), XmlAddChild);
    document.AddNode(XmlNodeComment, value.c_str(), 0);
    document.RestorePosition(L"0");
    document.ReplaceInnerMarkup(LongText().c_str());
}

} // namespace

TEST(XmlMemory, FailedLoadOrEditLeavesADocumentThatLoads)
{
    std::unique_ptr<MXmlMarkup> document(new MXmlMarkup);
    ForEachFailingAllocation(
        AllocationFailure::Throws,
        [&] {
            document.reset(new MXmlMarkup);
            document->LoadText(LongText().c_str());
            document->LoadText(L"<root><a/></root>");
            Edit(*document);
        },
        [&](ShortageOutcome outcome) {
            EXPECT_EQ(outcome, ShortageOutcome::RaisedBadAlloc);
            EXPECT_EQ(document->LoadText(L"<a>text</a>"), 1);
            EXPECT_TRUE(document->FindElement());
            EXPECT_EQ(document->GetElementData(1), L"text");
        });
}

TEST(XmlMemory, FailedGrowthKeepsTheRecords)
{
    MXmlRecordStore records;
    records.Grow(100);
    records[99] = MXmlElementRecord();
    records[99].start = 7;
    for (std::int32_t count : {1000, 65536, 65537, 200000}) {
        const std::int32_t capacity = records.Capacity();
        ForEachFailingAllocation(
            AllocationFailure::Throws, [&] { records.Grow(count); },
            [&](ShortageOutcome) { EXPECT_EQ(records.Capacity(), capacity); });
    }
    EXPECT_EQ(records[99].start, 7);
    EXPECT_EQ(records.Capacity(), 3 * MXmlRecordStore::SegmentRecords);
    EXPECT_EQ(records.SegmentSlots(), 4);
}
