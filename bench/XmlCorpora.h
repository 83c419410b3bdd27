#pragma once

#include <string>
#include <vector>

/// A document to measure with; `text` is empty if its file is not installed.
struct XmlCorpus {
    std::string name;
    /// Debian package that ships the file; empty for a document made here.
    std::string package;
    std::wstring text;
};

/// Small typed elements as the XML filers write them.
std::wstring MakeTypedElements(int count);

/// All five documents.
std::vector<XmlCorpus> XmlCorpora();
