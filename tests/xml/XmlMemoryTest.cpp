#include "fuzz/XmlInvariants.h"
#include "tests/support/Allocations.h"
#include "xml/MXmlMarkup.h"

#include <functional>

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
    const std::wstring value = L"a < b, long enough to take memory";
    const std::wstring markup = L"<b>text</b><!-- a comment --><c><d e='&amp;'/></c>text";
    const std::function<bool(MXmlMarkup&)> edits[] = {
        [](auto& d) { return d.AddElement(L"b", L"", XmlAddChild, L"a_type", L"<some text>"); },
        [&](auto& d) { return d.AddElement(L"b", value.c_str(), XmlAddChild, L"c", L"d"); },
        [&](auto& d) { return d.AddElement(L"b", markup.c_str(), XmlAddChild | XmlAddMarkup); },
        [&](auto& d) { return d.SetAttribute(1, L"a", markup.c_str()); },
        [&](auto& d) { return d.EnterElement() && d.AddNode(XmlNodeComment, value.c_str(), 0); }};
    for (const wchar_t* const text : {L"<a/>", L"<a></a>", L"<a><b/>\n</a>", L"<a>text</a>"})
        for (const auto& edit : edits) {
            MXmlMarkup document;
            document.LoadText(text);
            document.FindElement();
            document.SavePosition(L"");
            const auto editFromHere = [&] {
                EXPECT_TRUE(document.RestorePosition(L"") && edit(document));
            };
            for (int time = 0; time < 8; ++time) { // until the records have to grow
                const std::wstring before = document.GetDocumentText();
                const auto check = [&](ShortageOutcome) {
                    EXPECT_EQ(document.GetDocumentText(), before);
                    EXPECT_EQ(StaleIndex(document) + BrokenRule(document), "");
                    EXPECT_EQ(document.GetChildIndex(), 0);
                };
                ForEachFailingAllocation(AllocationFailure::Throws, editFromHere, check);
                EXPECT_TRUE(time > 0 || document.GetDocumentText() != before);
            }
            EXPECT_EQ(StaleIndex(document) + BrokenRule(document), "");
            EXPECT_FALSE(document.AddElement(L"added", L"<b>", XmlAddChild | XmlAddMarkup));
        }
}

TEST(XmlMemory, FailedGrowthKeepsTheRecords)
{
    MXmlRecordStore records;
    records.Grow(100);
    records[99].start = 7;
    for (std::int32_t count : {5000, 9000, 65536, 65537, 200000}) {
        const std::int32_t capacity = records.Capacity();
        ForEachFailingAllocation(
            AllocationFailure::Throws, [&] { records.Grow(count); },
            [&](ShortageOutcome) { EXPECT_EQ(records.Capacity(), capacity); });
        for (int nth : {1, 2})
            RunShortOfMemory(AllocationFailure::Throws, nth, [&] {
                records.Foresee(count + 1000, 100);
                records.Trim(100);
            });
        EXPECT_EQ(records[99].start, 7);
    }
    EXPECT_EQ(records.Capacity(), 3 * MXmlRecordStore::SegmentRecords);
    EXPECT_EQ(records.SegmentSlots(), 4);
}
