#pragma once

#include "xml/MXmlMarkup.h"
#include <string>
#include <vector>

/// The rules of scanning and indexing in their plainest form: one character after the other, one
/// step after the other, whatever it costs. What the engine makes of a text must be the same.
class LiteralParser
{
public:
    LiteralParser(std::wstring source, bool ignoresCase)
        : text(std::move(source)), ignoreCase(ignoresCase)
    {
    }

    /// As `MXmlMarkup::LoadText`.
    int Load();

    /// All records, by index.
    std::vector<MXmlElementRecord> records;
    std::wstring errorText;

private:
    struct Scan {
        int type = 0;
        std::int32_t start = 0;
        std::int32_t length = 0;
        bool emptyElement = false;
        std::wstring text;
    };

    int ScanNode(Scan& scan);
    int ScanCharacters(Scan& scan);
    void Classify(Scan& scan, std::int32_t i);
    void ClassifyTag(Scan& scan, std::int32_t i);
    void ClassifyBang(Scan& scan);
    void Expect(const wchar_t* ending);
    void Fail(Scan& scan, const wchar_t* what);
    void TrackQuotes(int type, wchar_t c);

    std::int32_t ParseElements();
    void StartTag(const Scan& scan);
    void EndTag(const Scan& scan);
    void Dissolve(std::size_t depth, bool atEnd);
    void DissolveTop(std::int32_t record);
    void Mark();
    bool Matches(const std::wstring& name) const;

    std::wstring text;
    bool ignoreCase;
    std::int32_t next = 0;
    std::int32_t tokenStart = 0;
    std::int32_t tokenLength = 0;

    // State of one scan.
    int state = 0;
    const wchar_t* terminator = nullptr;
    std::int32_t terminatorLength = 0;
    std::int32_t nameStart = 0;
    wchar_t last = 0;
    wchar_t beforeLast = 0;

    // State of the parse.
    struct Open {
        std::int32_t record;
        std::wstring name;
    };
    std::vector<Open> stack;
    std::int32_t current = 0;
    std::int32_t first = 0;
};
