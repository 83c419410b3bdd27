#pragma once

#include <string>

#include <rapidxml/rapidxml.hpp>

/// rapidxml as one uses it who wants it fast: it parses in place, so it gets a copy, whose length
/// it is given, and keeps its memory from one document to the next.
class XmlPeer
{
public:
    /// `Flags` as for its `parse`; the fastest ones without data nodes if nothing else is said.
    template <int Flags = rapidxml::parse_fastest | rapidxml::parse_no_data_nodes>
    void Load(const std::wstring& text)
    {
        document.clear();
        copy = text;
        document.parse<Flags>(&copy[0]);
    }

    /// What was loaded.
    const rapidxml::xml_document<wchar_t>& Document() const { return document; }

private:
    std::wstring copy;
    rapidxml::xml_document<wchar_t> document;
};
