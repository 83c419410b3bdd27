#pragma once

#include <string>
#include <vector>

/// A document to measure with; `text` is empty if its file is not installed.
struct XmlCorpus {
    std::string name;
    /// Debian package that ships the file; empty for a document made here.
    std::string package;
    std::wstring text;
    /// What loading it may cost against the peer's, in memory that is there and in new memory.
    double again;
    double anew;
    /// What the index may take an element, in bytes.
    double bytes;
};

/// Small typed elements as the XML filers write them.
std::wstring MakeTypedElements(int count);

/// Five documents of some millions of characters, and two more kinds of markup. Characters beyond
/// Latin-1 stand there as U+00FC, because the peer looks at the low byte of a character only, and
/// takes some for the end of the text.
std::vector<XmlCorpus> XmlCorpora();

/// A hundred documents of about so many characters, each another one.
std::vector<std::wstring> SmallXmlDocuments(std::size_t length);

/// A document that is made to be slow, at any size.
struct HostileXml {
    const char* name;
    std::wstring (*make)(int count);
};

/// All that are known.
std::vector<HostileXml> HostileXmlDocuments();
