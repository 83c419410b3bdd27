#pragma once

/// Editing: what it costs with the size of the document.
class XmlEditBench
{
public:
    /// 100,000 appended elements beside ten times 10,000.
    static void CompareAppends();

    /// Edits all over a document of 100,000 elements beside PropertyTree on the same tree, which
    /// has no text to keep, and beside moving text and records by hand.
    static void CompareScatteredEdits();
};
