#pragma once

#include "xml/scan/MXmlNodeScan.h"

/// Scans a doctype with the declarations nested in it. Unlike other nodes a doctype contains nodes,
/// and the kind of one and its open quotes reach into what follows; so it is scanned by a state
/// machine that takes one character after the other.
class MXmlDoctypeScanner
{
public:
    /// Scans from `offset`, which is right behind the "<!D", and fills `scan` but for its start and
    /// length. Answers where the node ends.
    std::int32_t Run(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan);

private:
    enum State { Between, BehindLess, BehindBang, BehindDash, InNode };

    void Classify(wchar_t c);
    void ClassifyBehindLess(wchar_t c);
    void ClassifyBehindBang(wchar_t c);
    void ClassifyBehindDash(wchar_t c);
    void Begin(std::int32_t nodeType, const wchar_t* nodeTerminator);
    void BeginIllFormed(const wchar_t* nodeFinding);
    bool Terminates(const wchar_t* at) const;
    void TrackQuotes(wchar_t c);
    void TrackDeclaration(wchar_t c);
    void TrackValue(wchar_t c);

    State state = Between;
    // Kind of the node inside, or of the one before. What precedes all of them is tracked like an
    // ill-formed one.
    std::int32_t type = XmlScanIllFormed;
    // What must stand before the ">" that ends the node inside.
    const wchar_t* terminator = L"";
    const wchar_t* finding = nullptr;
    bool readsName = false;
    bool awaitsValue = false;
    wchar_t openQuote = 0;
    wchar_t last = 0;
};
