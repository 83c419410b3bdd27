#pragma once

#include <string>
#include <vector>

/// A document to measure with; `text` is empty if its file is not installed.
struct XmlCorpus {
    std::string name;
    /// Debian package that ships the file; empty for a document made here.
    std::string package;
    std::wstring text;
    /// What a load may cost against the peer's: as much everywhere, and two thirds on most.
    double bar;
};

/// Small typed elements as the XML filers write them.
std::wstring MakeTypedElements(int count);

/// All five documents. Characters beyond Latin-1 stand there as U+00FC, because the peer looks at
/// the low byte of a character only, and takes some for the end of the text.
std::vector<XmlCorpus> XmlCorpora();
