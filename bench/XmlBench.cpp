#include "bench/XmlCorpora.h"
#include "bench/support/Interleave.h"
#include "xml/MXmlMarkup.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <rapidxml.hpp>
#include <cmath>
#include <sstream>

namespace
{

// Parsing

constexpr int RapidFlags = rapidxml::parse_fastest | rapidxml::parse_no_data_nodes;

void LoadFresh(const std::wstring& text)
{
    MXmlMarkup document;
    document.LoadText(text.c_str());
}

// The peer parses in place, so it is given a copy of its own, as the engine makes one.
void LoadPeer(const std::wstring& text)
{
    std::wstring copy;
    copy.assign(text.c_str(), wcslen(text.c_str()));
    rapidxml::xml_document<wchar_t> document;
    document.parse<RapidFlags>(&copy[0]);
}

bool PeerCanRead(const std::wstring& text)
{
    try {
        LoadPeer(text);
        return true;
    } catch (const rapidxml::parse_error& error) {
        std::printf("    rapidxml cannot read it: %s\n", error.what());
        return false;
    }
}

void PrintLoad(const char* label, const XmlCorpus& corpus, const Comparison& result)
{
    std::printf("  %-24s %-8s %8.0f %8.0f   %5.2f  (%.2f .. %.2f)\n", corpus.name.c_str(), label,
                static_cast<double>(corpus.text.size()) / result.ours.median / 1e6,
                static_cast<double>(corpus.text.size()) / result.peer.median / 1e6,
                result.ratio.median, result.ratio.low, result.ratio.high);
}

void CompareLoad(const XmlCorpus& corpus)
{
    if (!PeerCanRead(corpus.text))
        return;
    PrintLoad("fresh", corpus,
              Interleave(
                  31, [&] { LoadFresh(corpus.text); }, [&] { LoadPeer(corpus.text); }));

    MXmlMarkup document;
    std::wstring copy;
    rapidxml::xml_document<wchar_t> peer;
    PrintLoad("reused", corpus,
              Interleave(
                  31, [&] { document.LoadText(corpus.text.c_str()); },
                  [&] {
                      copy.assign(corpus.text.c_str(), wcslen(corpus.text.c_str()));
                      peer.parse<RapidFlags>(&copy[0]);
                  }));
}

void BenchLoad(const std::vector<XmlCorpus>& corpora)
{
    std::printf("LoadText against rapidxml (parse_fastest, no data nodes), copies included;\n"
                "fresh document each time, and one used again\n"
                "  %-33s %8s %8s   ratio of times, median (spread)\n",
                "", "Mchar/s", "peer");
    for (const XmlCorpus& corpus : corpora) {
        if (corpus.text.empty())
            std::printf("  %-24s not there: install %s\n", corpus.name.c_str(),
                        corpus.package.c_str());
        else
            CompareLoad(corpus);
    }
}

// Memory

void BenchMemory(const std::vector<XmlCorpus>& corpora)
{
    std::printf("\nIndex after a parse: records reserved over elements plus the first reservation\n");
    for (const XmlCorpus& corpus : corpora) {
        MXmlMarkup document;
        document.LoadText(corpus.text.c_str());
        const int elements = document.GetRecordCount() - 1;
        const int first = static_cast<int>(corpus.text.size() / 64 + 8);
        const int capacity = document.GetRecordCapacity();
        std::printf("  %-24s %7d elements, %7d records, %5.2f of 1.6 allowed per element\n",
                    corpus.name.c_str(), elements, capacity,
                    std::max(0.0, static_cast<double>(capacity - first) / std::max(elements, 1)));
    }
}

// Walking

struct Taken {
    std::size_t characters = 0;

    void Take(const std::wstring& text) { characters += text.size(); }
};

void Walk(MXmlMarkup& document, Taken& taken)
{
    while (document.FindElement()) {
        const std::int32_t element = document.GetMainIndex();
        taken.Take(document.GetElementName(element));
        taken.Take(document.GetAttribute(element, L"type"));
        taken.Take(document.GetElementData(element));
        document.EnterElement();
        Walk(document, taken);
        document.LeaveElement();
    }
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

double WalkNanoseconds(int elements)
{
    MXmlMarkup document;
    document.LoadText(MakeTypedElements(elements).c_str());
    Taken taken;
    std::vector<double> times;
    for (int round = 0; round < 7; ++round)
        times.push_back(Seconds([&] { Walk(document, taken); }) / elements * 1e9);
    return Spread(times).median;
}

void BenchWalk()
{
    std::printf("\nWalk taking name, attribute and data of each element, ns an element\n");
    for (int elements : {7500, 15000, 30000, 60000, 120000, 240000})
        std::printf("  %7d elements %6.0f\n", elements, WalkNanoseconds(elements));

    const std::wstring text = MakeTypedElements(60000);
    MXmlMarkup document;
    document.LoadText(text.c_str());
    Taken ours, theirs;
    const Comparison result = Interleave(
        5, [&] { Walk(document, ours); },
        [&] {
            std::wistringstream stream(text);
            boost::property_tree::wptree tree;
            boost::property_tree::read_xml(stream, tree);
            WalkPeer(tree, theirs);
        });
    std::printf("  (a): %.1f ms; PropertyTree's load and walk %.1f ms; %.1f times (%.1f .. %.1f)\n",
                result.ours.median * 1e3, result.peer.median * 1e3, result.ratio.median,
                result.ratio.low, result.ratio.high);
}

// Appending

double AppendNanoseconds(int depth, int elements)
{
    MXmlMarkup document;
    for (int i = 0; i < depth; ++i) {
        document.AddElement(L"Level", nullptr, 0);
        document.EnterElement();
    }
    const double seconds = Seconds([&] {
        for (int i = 0; i < elements; ++i) {
            document.AddElement(L"Count", L"42", 0);
            document.SetAttribute(document.GetMainIndex(), L"type", L"int");
        }
    });
    return seconds / elements * 1e9;
}

void BenchAppend()
{
    std::printf("\nAddElement and SetAttribute at the end, ns an element, median of 7\n"
                "  %8s %10s %10s %10s   most over least\n",
                "depth", "10,000", "30,000", "100,000");
    for (int depth : {1, 100}) {
        std::vector<double> medians;
        for (int elements : {10000, 30000, 100000}) {
            std::vector<double> times;
            for (int round = 0; round < 7; ++round)
                times.push_back(AppendNanoseconds(depth, elements));
            medians.push_back(Spread(times).median);
        }
        std::printf("  %8d %10.0f %10.0f %10.0f   %.2f\n", depth, medians[0], medians[1],
                    medians[2],
                    *std::max_element(medians.begin(), medians.end()) /
                        *std::min_element(medians.begin(), medians.end()));
    }
}

// Hostile documents

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

struct Hostile {
    const char* name;
    std::function<std::wstring(int)> make;
};

const std::vector<Hostile>& HostileDocuments()
{
    static const std::vector<Hostile> documents = {
        {"nested start tags, never closed", [](int n) { return Repeat(L"<a>", n); }},
        {"open elements, end tags that match none",
         [](int n) { return Numbered(L"<n", n, L">") + Numbered(L"</m", n, L">"); }},
        {"the same, names alike up to an =",
         [](int n) { return Numbered(L"<n=", n, L">") + Numbered(L"</n=x", n, L">"); }},
        {"a start tag with attributes",
         [](int n) { return L"<a" + Numbered(L" b", n, L"='c'") + L"/>"; }},
        {"repetitions of <!", [](int n) { return Repeat(L"<!", n); }},
        {"open elements closed by an outer end tag",
         [](int n) { return L"<o>" + Repeat(L"<a>", n) + L"</o>"; }},
        {"dissolved over and over",
         [](int n) { return L"<r>" + Repeat(L"<a><b><c></a>", n / 4) + L"</r>"; }},
    };
    return documents;
}

void BenchHostile()
{
    std::printf("\nHostile documents, ms; factor for twice the input (2.3 allowed)\n"
                "  %-42s %8s %8s %8s\n",
                "", "500,000", "1,000,000", "factor");
    for (const Hostile& hostile : HostileDocuments()) {
        const std::wstring half = hostile.make(500000);
        const std::wstring whole = hostile.make(1000000);
        MXmlMarkup document;
        const Comparison result = Interleave(
            5, [&] { document.LoadText(half.c_str()); }, [&] { document.LoadText(whole.c_str()); });
        std::printf("  %-42s %8.1f %8.1f %8.2f\n", hostile.name, result.ours.median * 1e3,
                    result.peer.median * 1e3, result.ratio.median);
    }
}

} // namespace

int main()
{
    const std::vector<XmlCorpus> corpora = XmlCorpora();
    BenchLoad(corpora);
    BenchMemory(corpora);
    BenchWalk();
    BenchAppend();
    BenchHostile();
}
