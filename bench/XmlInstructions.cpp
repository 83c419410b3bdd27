// What the document engine costs in instructions, which no neighbour on the machine disturbs. To be
// run under callgrind without counting at the start; leaves a dump a case, and writes the cases
// with what each is divided by: elements, or documents.

#include "bench/XmlCorpora.h"
#include "xml/MXmlMarkup.h"

#include <cstdio>

#include <valgrind/callgrind.h>

namespace
{

// That often what makes a document hostile.
const int hostileCount = 20000;

template <class Work>
void Count(const std::string& name, std::size_t divisor, const Work& work)
{
    CALLGRIND_ZERO_STATS;
    CALLGRIND_START_INSTRUMENTATION;
    work();
    CALLGRIND_STOP_INSTRUMENTATION;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    std::printf("%s\t%zu\n", name.c_str(), divisor);
}

std::size_t Elements(const MXmlMarkup& document)
{
    return static_cast<std::size_t>(document.GetRecordCount() - 1);
}

void CountLoad(const XmlCorpus& corpus)
{
    MXmlMarkup document;
    document.LoadText(corpus.text.c_str());
    Count(corpus.name, Elements(document), [&] { document.LoadText(corpus.text.c_str()); });
}

void CountLoad(const HostileXml& hostile)
{
    const std::wstring text = hostile.make(hostileCount);
    MXmlMarkup document;
    document.LoadText(text.c_str());
    Count(hostile.name, hostileCount, [&] { document.LoadText(text.c_str()); });
}

void CountSmallLoads(std::size_t length)
{
    const std::vector<std::wstring> documents = SmallXmlDocuments(length);
    Count("documents of " + std::to_string(length) + " characters", documents.size(), [&] {
        for (const std::wstring& text : documents) {
            MXmlMarkup document;
            document.LoadText(text.c_str());
        }
    });
}

std::size_t Walk(MXmlMarkup& document)
{
    std::size_t characters = 0;
    do {
        while (document.FindElement()) {
            const std::int32_t element = document.GetMainIndex();
            characters += document.GetElementName(element).size() +
                          document.GetAttribute(element, L"type").size() +
                          document.GetElementData(element).size();
            document.EnterElement();
        }
    } while (document.LeaveElement());
    return characters;
}

void CountWalk(const XmlCorpus& corpus)
{
    MXmlMarkup document;
    document.LoadText(corpus.text.c_str());
    Count("load and walk " + corpus.name, Elements(document), [&] {
        document.LoadText(corpus.text.c_str());
        Walk(document);
    });
}

} // namespace

int main()
{
    const std::vector<XmlCorpus> corpora = XmlCorpora();
    for (const XmlCorpus& corpus : corpora) {
        if (corpus.text.empty())
            return std::fprintf(stderr, "install %s\n", corpus.package.c_str()), 1;
        CountLoad(corpus);
    }
    for (const std::size_t length : {90, 450, 4000})
        CountSmallLoads(length);
    for (const std::size_t i : {0, 2})
        CountWalk(corpora[i]);
    for (const HostileXml& hostile : HostileXmlDocuments())
        CountLoad(hostile);
}
