// What the document engine costs: loading, walking, appending, and documents made to be slow.

#include "bench/support/Comparison.h"
#include "bench/support/Report.h"
#include "bench/support/Sample.h"
#include "bench/support/TickClock.h"
#include "bench/XmlCorpora.h"
#include "xml/MXmlMarkup.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <rapidxml/rapidxml.hpp>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <sstream>

namespace
{

typedef rapidxml::xml_document<wchar_t> PeerDocument;

const int peerFlags = rapidxml::parse_fastest | rapidxml::parse_no_data_nodes;

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

/// The peer parses in place, so it gets a copy, as the engine makes one.
void LoadPeer(const std::wstring& text, std::wstring& copy, PeerDocument& document)
{
    document.clear();
    copy = text.c_str();
    document.parse<peerFlags>(&copy[0]);
}

bool PeerReads(const XmlCorpus& corpus)
{
    try {
        std::wstring copy;
        PeerDocument document;
        LoadPeer(corpus.text, copy, document);
        return true;
    } catch (const rapidxml::parse_error& error) {
        std::printf("%s: the peer cannot read it: %s\n", corpus.name.c_str(), error.what());
        return false;
    }
}

/// A new document each time, with new memory.
void CompareLoad(const XmlCorpus& corpus)
{
    const Comparison::Work load = [&](unsigned) {
        MXmlMarkup document;
        document.LoadText(corpus.text.c_str());
    };
    const Comparison::Work loadPeer = [&](unsigned) {
        std::wstring copy;
        PeerDocument peer;
        LoadPeer(corpus.text, copy, peer);
    };
    Comparison(corpus.name.c_str(), 1, load, loadPeer).AtMost(corpus.bar);
}

/// One document loaded again and again, in memory that it has.
void CompareLoadAgain(const XmlCorpus& corpus)
{
    MXmlMarkup document;
    const Comparison::Work load = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            document.LoadText(corpus.text.c_str());
    };
    std::wstring copy;
    PeerDocument peer;
    const Comparison::Work loadPeer = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            LoadPeer(corpus.text, copy, peer);
    };
    Comparison((corpus.name + ", loaded again").c_str(), 1, load, loadPeer).AtMost(1);
}

void CompareLoads(const std::vector<XmlCorpus>& corpora)
{
    Report::Columns("LoadText : rapidxml, parse_fastest without data nodes");
    for (const XmlCorpus& corpus : corpora) {
        if (corpus.text.empty()) {
            std::printf("%s is not there: install %s\n", corpus.name.c_str(),
                        corpus.package.c_str());
        } else if (PeerReads(corpus)) {
            CompareLoad(corpus);
            CompareLoadAgain(corpus);
        }
    }
}

void ShowIndexMemory(const std::vector<XmlCorpus>& corpora)
{
    Report::Heading("Bytes of the index for each element, beyond the first reservation");
    for (const XmlCorpus& corpus : corpora) {
        MXmlMarkup document;
        document.LoadText(corpus.text.c_str());
        const double reserved = static_cast<double>(corpus.text.size() / 64 + 8);
        const double grown = std::max(0.0, document.GetRecordCapacity() - reserved);
        Report::FigureAtMost(corpus.name.c_str(),
                             grown * sizeof(MXmlElementRecord) / document.GetRecordCount(), "bytes",
                             1.6 * sizeof(MXmlElementRecord));
    }
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

void WalkPeer(const boost::property_tree::wptree& tree, Taken& taken)
{
    for (const auto& child : tree) {
        if (child.first == L"<xmlattr>")
            continue;
        taken.Take(child.first);
        taken.Take(child.second.get<std::wstring>(L"<xmlattr>.type", L""));
        taken.Take(child.second.data());
        WalkPeer(child.second, taken);
    }
}

void CompareWalk(const XmlCorpus& corpus)
{
    MXmlMarkup document;
    document.LoadText(corpus.text.c_str());
    document.SavePosition(L"top");
    Taken ours;
    Taken theirs;
    const Comparison::Work walk = [&](unsigned) { Walk(document, ours); };
    const Comparison::Work loadAndWalkPeer = [&](unsigned) {
        std::wistringstream stream(corpus.text);
        boost::property_tree::wptree tree;
        boost::property_tree::read_xml(stream, tree);
        WalkPeer(tree, theirs);
    };
    Report::Columns("Walk, name, attribute and data : PropertyTree, load and walk");
    Comparison(corpus.name.c_str(), 1, walk, loadAndWalkPeer).AtMost(1);
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

void Append(MXmlMarkup& document, int depth, int elements)
{
    document.LoadText(nullptr);
    for (int i = 0; i < depth; ++i) {
        document.AddElement(L"Level", nullptr, 0);
        document.EnterElement();
    }
    for (int i = 0; i < elements; ++i) {
        document.AddElement(L"Count", L"42", 0);
        document.SetAttribute(document.GetMainIndex(), L"type", L"int");
    }
}

/// 100,000 appended elements beside ten times 10,000.
void CompareAppends()
{
    Report::Columns("AddElement and SetAttribute : the same, a tenth of the elements");
    for (int depth : {1, 100}) {
        const std::string what = "100,000 elements at depth " + std::to_string(depth);
        MXmlMarkup document;
        const auto appendAgain = [&](int rounds) {
            return [&document, depth, rounds](unsigned) {
                for (int i = 0; i < rounds; ++i)
                    Append(document, depth, 100000 / rounds);
            };
        };
        Comparison(what.c_str(), 1, appendAgain(1), appendAgain(10)).AtMost(1.2);
        const auto appendAnew = [&](int rounds) {
            return [depth, rounds](unsigned) {
                for (int i = 0; i < rounds; ++i) {
                    MXmlMarkup fresh;
                    Append(fresh, depth, 100000 / rounds);
                }
            };
        };
        Comparison((what + ", new memory").c_str(), 1, appendAnew(1), appendAnew(10)).Show();
    }
}

std::wstring Repeat(const std::wstring& piece, int count)
{
    std::wstring text;
    text.reserve(piece.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

std::wstring Numbered(const std::wstring& before, int count, const std::wstring& behind)
{
    std::wstring text;
    for (int i = 0; i < count; ++i)
        text += before + std::to_wstring(i) + behind;
    return text;
}

void CompareHostile(const char* what, const std::function<std::wstring(int)>& make)
{
    const std::wstring whole = make(2000000);
    const std::wstring half = make(1000000);
    MXmlMarkup document;
    const auto load = [&](const std::wstring& text) {
        return [&](unsigned) { document.LoadText(text.c_str()); };
    };
    Comparison(what, 1, load(whole), load(half)).AtMost(2.3);
}

void CompareHostileDocuments()
{
    Report::Columns("Hostile documents, 2,000,000 times : 1,000,000 times");
    CompareHostile("start tags, never closed", [](int n) { return Repeat(L"<a>", n); });
    CompareHostile("start tags, closed by one outer end tag",
                   [](int n) { return L"<o>" + Repeat(L"<a>", n) + L"</o>"; });
    CompareHostile("start tags, then end tags that match none",
                   [](int n) { return Numbered(L"<n", n, L">") + Numbered(L"</m", n, L">"); });
    CompareHostile("the same, names alike before an =",
                   [](int n) { return Numbered(L"<n=", n, L">") + Numbered(L"</n=x", n, L">"); });
    CompareHostile("two of three start tags not closed",
                   [](int n) { return L"<r>" + Repeat(L"<a><b><c></a>", n / 4) + L"</r>"; });
    CompareHostile("attributes of one start tag",
                   [](int n) { return L"<a" + Numbered(L" b", n, L"='c'") + L"/>"; });
    CompareHostile("<!", [](int n) { return Repeat(L"<!", n); });
}

} // namespace

int main()
{
    const std::vector<XmlCorpus> corpora = XmlCorpora();
    CompareLoads(corpora);
    ShowIndexMemory(corpora);
    CompareWalk(corpora[0]);
    ShowWalkBySize();
    CompareAppends();
    CompareHostileDocuments();
}
