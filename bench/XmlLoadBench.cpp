#include "bench/XmlLoadBench.h"

#include "bench/support/Comparison.h"
#include "bench/support/HeapCount.h"
#include "bench/support/Report.h"
#include "bench/XmlPeer.h"
#include "xml/MXmlMarkup.h"
#include "xml/scan/XmlRuns.h"

#include <cstdio>

namespace
{

bool PeerReads(const XmlCorpus& corpus)
{
    try {
        XmlPeer peer;
        peer.Load(corpus.text);
        return true;
    } catch (const rapidxml::parse_error& error) {
        std::printf("%s: the peer cannot read it: %s\n", corpus.name.c_str(), error.what());
        return false;
    }
}

/// Each text in turn in new memory.
void CompareAnew(const std::string& what, const std::vector<std::wstring>& texts, double bar)
{
    const Comparison::Work load = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i) {
            MXmlMarkup document;
            document.LoadText(texts[i % texts.size()].c_str());
        }
    };
    const Comparison::Work loadPeer = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i) {
            XmlPeer peer;
            peer.Load(texts[i % texts.size()]);
        }
    };
    Comparison(what.c_str(), static_cast<unsigned>(texts.size()), load, loadPeer).AtMost(bar);
}

/// Each text in turn in one document, in memory that it has.
void CompareAgain(const std::string& what, const std::vector<std::wstring>& texts, double bar)
{
    MXmlMarkup document;
    const Comparison::Work load = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            document.LoadText(texts[i % texts.size()].c_str());
    };
    XmlPeer peer;
    const Comparison::Work loadPeer = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            peer.Load(texts[i % texts.size()]);
    };
    const std::string again = what + ", loaded again";
    Comparison(again.c_str(), static_cast<unsigned>(texts.size()), load, loadPeer).AtMost(bar);
}

} // namespace

void XmlLoadBench::CompareCorpora(const std::vector<XmlCorpus>& corpora)
{
    Report::Columns("LoadText : rapidxml, parse_fastest without data nodes, length given");
    for (const XmlCorpus& corpus : corpora) {
        if (corpus.text.empty()) {
            std::printf("%s is not there: install %s\n", corpus.name.c_str(),
                        corpus.package.c_str());
        } else if (PeerReads(corpus)) {
            CompareAnew(corpus.name, {corpus.text}, corpus.anew);
            CompareAgain(corpus.name, {corpus.text}, corpus.again);
        }
    }
}

void XmlLoadBench::CompareWithCopy(const XmlCorpus& corpus)
{
    const wchar_t* const text = corpus.text.c_str();
    const Comparison::Work load = [&](unsigned) { MXmlMarkup().LoadText(text); };
    const Comparison::Work copy = [&](unsigned) { std::wstring(text, TextLength(text)); };
    Report::Columns("LoadText of a new document : finding the end of the text and copying it");
    Comparison(corpus.name.c_str(), 1, load, copy).Show();
}

void XmlLoadBench::CompareSmallDocuments()
{
    // The bars are what the parser took beside this peer that scanned one character after the
    // other.
    const struct {
        std::size_t length;
        double again;
        double anew;
    } kinds[] = {{90, 2.87, 5.26}, {450, 1.88, 2.94}, {4000, 1.52, 1.74}};
    Report::Columns("A hundred small documents, each : rapidxml, no slower than before");
    for (const auto& kind : kinds) {
        const std::vector<std::wstring> texts = SmallXmlDocuments(kind.length);
        const std::string what = std::to_string(kind.length) + " characters";
        CompareAnew(what, texts, kind.anew);
        CompareAgain(what, texts, kind.again);
    }
}

void XmlLoadBench::ShowMemory(const std::vector<XmlCorpus>& corpora)
{
    Report::Heading("Memory beside the text: for each element, and on the way beyond what is kept");
    for (const XmlCorpus& corpus : corpora) {
        const double text = static_cast<double>(corpus.text.size() * sizeof(wchar_t));
        HeapCount::ResetPeak();
        MXmlMarkup document;
        document.LoadText(corpus.text.c_str());
        const double elements = document.GetRecordCount();
        const double kept = static_cast<double>(HeapCount::LiveBytes());
        const double peak = static_cast<double>(HeapCount::PeakBytes());
        Report::FigureAtMost((corpus.name + ", an element").c_str(), (kept - text) / elements,
                             "bytes", corpus.bytes);
        Report::FigureAtMost((corpus.name + ", on the way").c_str(), peak - kept, "bytes",
                             MXmlRecordStore::SegmentRecords * sizeof(MXmlElementRecord));
    }
}
