#include "fuzz/XmlInvariants.h"
#include "tests/support/Allocations.h"
#include "xml/MXmlMarkup.h"

// Names, messages and texts are long enough to take memory of their own, and the elements deep
// enough for the index of open ones.
TEST(XmlMemory, FailedLoadOrEditLeavesADocumentThatLoads)
{
    const std::wstring value(100, L'&');
    std::wstring markup;
    for (int i = 0; i < 40; ++i)
        markup += L"<a_name_of_some_length" + std::to_wstring(i) + L">";
    markup += L"</none></a_name_of_some_length0>";
    std::unique_ptr<MXmlMarkup> document(new MXmlMarkup);
    const auto loadAndEdit = [&] {
        document.reset(new MXmlMarkup);
        document->LoadText(markup.c_str());
        document->LoadText(L"<root><a/></root>");
        document->FindElement();
        for (int i = 0; i < 20; ++i) {
            document->SavePosition((value + std::to_wstring(i)).c_str());
            document->AddElement(L"element", value.c_str(), XmlAddChild);
        }
        document->AddNode(XmlNodeComment, value.c_str(), 0);
        document->RestorePosition((value + L"0").c_str());
        document->SetAttribute(document->GetMainIndex(), L"value", value.c_str());
        document->ReplaceInnerMarkup(markup.c_str());
    };
    ForEachFailingAllocation(AllocationFailure::Throws, loadAndEdit, [&](ShortageOutcome outcome) {
        EXPECT_EQ(outcome, ShortageOutcome::RaisedBadAlloc);
        EXPECT_EQ(document->LoadText(L"<a>text</a>"), 1);
    });
}

// A value, or a whole document, under each kind of element that can take one: in, or not at all.
TEST(XmlMemory, FailedEditLeavesTheDocumentAsItWas)
{
    const std::wstring markup = L"<b>text</b><!-- a comment --><c><d e='&amp;'/></c>text";
    for (const wchar_t* const text : {L"<a/>", L"<a></a>", L"<a><b/>\n</a>", L"<a>text</a>"})
        for (const std::wstring& data : {std::wstring(), std::wstring(L"a < b"), markup}) {
            MXmlMarkup document;
            document.LoadText(text);
            document.FindElement();
            const std::uint32_t flags = data == markup ? XmlAddChild | XmlAddMarkup : XmlAddChild;
            const auto add = [&] {
                EXPECT_TRUE(
                    document.AddElement(L"added", data.c_str(), flags, L"a_type", L"<some text>"));
            };
            const auto isAsItWas = [&](ShortageOutcome) {
                EXPECT_EQ(document.GetDocumentText(), text);
                EXPECT_EQ(StaleIndex(document) + BrokenRule(document), "");
                EXPECT_EQ(document.GetChildIndex(), 0);
            };
            ForEachFailingAllocation(AllocationFailure::Throws, add, isAsItWas);
            const std::wstring start = L"<added a_type=\"&lt;some text&gt;\"";
            EXPECT_NE(document.GetDocumentText().find(start), std::wstring::npos);
            EXPECT_EQ(StaleIndex(document) + BrokenRule(document), "");
            EXPECT_FALSE(document.AddElement(L"added", L"<b>", XmlAddChild | XmlAddMarkup));
            document.LoadText(text);
            document.FindElement();
            ForEachFailingAllocation(
                AllocationFailure::Throws, [&] { document.SetAttribute(1, L"a", markup.c_str()); },
                isAsItWas);
            document.LoadText(text);
            document.FindElement();
            document.EnterElement();
            ForEachFailingAllocation(
                AllocationFailure::Throws,
                [&] { document.AddNode(XmlNodeComment, markup.c_str(), 0); }, isAsItWas);
        }
}

TEST(XmlMemory, FailedGrowthKeepsTheRecords)
{
    MXmlRecordStore records;
    records.Grow(100);
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
