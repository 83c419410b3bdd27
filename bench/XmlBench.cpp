// What the document engine costs: loading, walking, editing, and documents made to be slow.

#include "bench/support/Comparison.h"
#include "bench/support/Report.h"
#include "bench/support/Sample.h"
#include "bench/support/TickClock.h"
#include "bench/XmlCorpora.h"
#include "bench/XmlEditBench.h"
#include "bench/XmlLoadBench.h"
#include "bench/XmlPeer.h"
#include "xml/MXmlMarkup.h"

#include <functional>

namespace
{

double MedianNanoseconds(unsigned rounds, const std::function<void()>& work)
{
    Sample times;
    for (unsigned i = 0; i < rounds; ++i) {
        const std::uint64_t begin = TickClock::Now();
        work();
        times.Add(TickClock::Nanoseconds(TickClock::Now() - begin));
    }
    return times.Median();
}

/// What a walk has taken from a document.
struct Taken {
    std::size_t characters = 0;

    void Take(const std::wstring& text) { characters += text.size(); }
};

void WalkLevel(MXmlMarkup& document, Taken& taken)
{
    while (document.FindElement()) {
        const std::int32_t element = document.GetMainIndex();
        taken.Take(document.GetElementName(element));
        taken.Take(document.GetAttribute(element, L"type"));
        taken.Take(document.GetElementData(element));
        document.EnterElement();
        WalkLevel(document, taken);
        document.LeaveElement();
    }
}

/// From the top, where the position is to have been saved.
void Walk(MXmlMarkup& document, Taken& taken)
{
    document.RestorePosition(L"top");
    WalkLevel(document, taken);
}

void WalkPeer(const rapidxml::xml_node<wchar_t>& parent, Taken& taken)
{
    for (const auto* node = parent.first_node(); node; node = node->next_sibling()) {
        taken.Take(std::wstring(node->name(), node->name_size()));
        if (const auto* type = node->first_attribute(L"type"))
            taken.Take(std::wstring(type->value(), type->value_size()));
        taken.Take(std::wstring(node->value(), node->value_size()));
        WalkPeer(*node, taken);
    }
}

/// From the text to all that is in it. The bar is what this took beside the peer before.
void CompareLoadAndWalk(const XmlCorpus& corpus, double bar)
{
    MXmlMarkup document;
    Taken ours;
    const Comparison::Work walk = [&](unsigned) {
        document.LoadText(corpus.text.c_str());
        WalkLevel(document, ours);
    };
    XmlPeer peer;
    Taken theirs;
    const Comparison::Work walkPeer = [&](unsigned) {
        peer.Load<rapidxml::parse_no_data_nodes>(corpus.text);
        WalkPeer(peer.Document(), theirs);
    };
    Comparison(corpus.name.c_str(), 1, walk, walkPeer).AtMost(bar);
}

void CompareWalks(const std::vector<XmlCorpus>& corpora)
{
    Report::Columns("Load and walk, name, attribute and data : rapidxml, no slower than before");
    CompareLoadAndWalk(corpora[0], 2.1);
    CompareLoadAndWalk(corpora[2], 1.75);
}

void ShowWalkBySize()
{
    Report::Heading("Walk by size, for each element");
    for (int elements : {15000, 30000, 60000, 120000, 240000}) {
        MXmlMarkup document;
        document.LoadText(MakeTypedElements(elements).c_str());
        document.SavePosition(L"top");
        Taken taken;
        const double walk = MedianNanoseconds(9, [&] { Walk(document, taken); });
        Report::Figure((std::to_string(elements) + " elements").c_str(), walk / elements, "ns");
    }
}

void CompareHostileDocuments()
{
    Report::Columns("Hostile documents, 2,000,000 times : 1,000,000 times");
    for (const HostileXml& hostile : HostileXmlDocuments()) {
        const std::wstring whole = hostile.make(2000000);
        const std::wstring half = hostile.make(1000000);
        MXmlMarkup document;
        const auto load = [&](const std::wstring& text) {
            return [&](unsigned) { document.LoadText(text.c_str()); };
        };
        Comparison(hostile.name, 1, load(whole), load(half)).AtMost(2.3);
    }
}

} // namespace

int main()
{
    const std::vector<XmlCorpus> corpora = XmlCorpora();
    XmlLoadBench::CompareCorpora(corpora);
    XmlLoadBench::CompareWithCopy(corpora[1]);
    XmlLoadBench::CompareSmallDocuments();
    XmlLoadBench::ShowMemory(corpora);
    CompareWalks(corpora);
    ShowWalkBySize();
    XmlEditBench::CompareAppends();
    XmlEditBench::CompareScatteredEdits();
    CompareHostileDocuments();
}
