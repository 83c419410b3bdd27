#pragma once

#include "bench/XmlCorpora.h"

/// Loading beside rapidxml, and the memory that it takes.
class XmlLoadBench
{
public:
    /// Every corpus, once in a new document and once in one that has been loaded before.
    static void CompareCorpora(const std::vector<XmlCorpus>& corpora);

    /// A new document beside what is left of it if nothing is parsed.
    static void CompareWithCopy(const XmlCorpus& corpus);

    /// Documents of a few lines, of which most programs load many.
    static void CompareSmallDocuments();

    /// Bytes an element, and what is taken on the way beyond what is kept.
    static void ShowMemory(const std::vector<XmlCorpus>& corpora);
};
