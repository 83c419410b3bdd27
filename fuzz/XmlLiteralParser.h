#pragma once

#include "xml/MXmlMarkup.h"
#include <string>
#include <vector>

struct LiteralIndex {
    /// What `MXmlMarkup::LoadText` answers.
    int wellFormed = 0;
    std::wstring errorText;
    /// All records, by index.
    std::vector<MXmlElementRecord> records;
};

/// The rules of scanning and indexing in their plainest form: one character after the other, one
/// step after the other, whatever it costs. What the engine makes of a text must be the same.
LiteralIndex ParseLiterally(const std::wstring& text, bool ignoreCase);
