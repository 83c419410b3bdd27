#pragma once

#include "bench/XmlCorpora.h"

/// Loading beside rapidxml, and the memory that it takes.
class XmlLoadBench
{
public:
    /// Every corpus, once in a new document and once in one that has been loaded before.
    static void CompareCorpora(const std::vector<XmlCorpus>& corpora);

    /// What is left of a load in new memory where nothing is parsed: the text's end is looked for,
    /// and a copy made. No bar can be met below it.
    static void CompareCopy(const XmlCorpus& corpus);

    /// Documents of a few lines, of which most programs load many.
    static void CompareSmallDocuments();

    /// Bytes an element, and what is taken on the way beyond what is kept.
    static void ShowMemory(const std::vector<XmlCorpus>& corpora);
};
