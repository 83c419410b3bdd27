#include "fuzz/XmlInvariants.h"

#include "fuzz/XmlLiteralParser.h"

#include <vector>

namespace
{

bool InRange(const MXmlMarkup& document, std::int32_t record)
{
    return record >= 0 && record < document.GetRecordCount();
}

bool IsLive(const MXmlMarkup& document, std::int32_t record)
{
    return InRange(document, record) && !document.GetRecord(record).Has(XmlElementDeleted);
}

std::string BrokenPosition(const MXmlMarkup& document)
{
    const std::int32_t parent = document.GetParentIndex();
    const std::int32_t main = document.GetMainIndex();
    const std::int32_t child = document.GetChildIndex();
    if (!IsLive(document, parent) || !IsLive(document, main) || !IsLive(document, child))
        return "the position names a record that is not there";
    if (main != 0 && document.GetRecord(main).parent != parent)
        return "the current element is not on the current level";
    if (child != 0 && document.GetRecord(child).parent != main)
        return "the current child is no child of the current element";
    return std::string();
}

std::string BrokenStore(const MXmlMarkup& document)
{
    if (document.GetRecordCount() < 1 || document.GetRecordCount() > document.GetRecordCapacity())
        return "more records in use than the store holds";
    if (!document.GetRecord(0).IsDocument())
        return "the document's record is none";
    return std::string();
}

std::string BrokenDeletedList(const MXmlMarkup& document)
{
    int listed = 0;
    for (std::int32_t at = document.GetDeletedHead(); at != 0;) {
        if (!InRange(document, at) || ++listed >= document.GetRecordCount())
            return "the list of deleted records goes astray";
        if (document.GetRecord(at).flagsAndLevel != XmlElementDeleted)
            return "a live record is listed as deleted";
        at = document.GetRecord(at).nextSibling;
    }
    for (std::int32_t i = 0; i < document.GetRecordCount(); ++i)
        listed -= document.GetRecord(i).Has(XmlElementDeleted) ? 1 : 0;
    return listed == 0 ? std::string() : "a deleted record is not listed";
}

// Checks the children of one record, and marks them as reached.
std::string BrokenChildren(const MXmlMarkup& document, std::int32_t parent,
                           std::vector<bool>& reached)
{
    const std::int32_t first = document.GetRecord(parent).firstChild;
    std::int32_t before = 0;
    bool lastIsChild = first == 0;
    for (std::int32_t at = first; at != 0; at = document.GetRecord(at).nextSibling) {
        if (!IsLive(document, at) || reached[static_cast<std::size_t>(at)])
            return "a chain of siblings goes astray";
        reached[static_cast<std::size_t>(at)] = true;
        const MXmlElementRecord& record = document.GetRecord(at);
        if (record.parent != parent)
            return "a child does not climb to its parent";
        if (record.Has(XmlElementNoEndTag) && record.EndTagLength() != 0)
            return "an end tag that is said not to be there";
        if (before != 0 && record.previousSibling != before)
            return "a sibling does not name the one before it";
        before = at;
        lastIsChild = lastIsChild || at == document.GetRecord(first).previousSibling;
    }
    if (first != 0 && !document.GetRecord(first).Has(XmlElementFirstChild))
        return "a first child is not marked";
    return lastIsChild ? std::string() : "the first child names no child as the last";
}

std::string BrokenTree(const MXmlMarkup& document)
{
    std::vector<bool> reached(static_cast<std::size_t>(document.GetRecordCount()));
    std::vector<std::int32_t> parents = {0};
    while (!parents.empty()) {
        const std::int32_t parent = parents.back();
        parents.pop_back();
        const std::string broken = BrokenChildren(document, parent, reached);
        if (!broken.empty())
            return broken;
        std::int32_t child = document.GetRecord(parent).firstChild;
        for (; child != 0; child = document.GetRecord(child).nextSibling)
            parents.push_back(child);
    }
    return std::string();
}

// All records in the order of the document, the document's first. `records` is anything that gives
// a record by its number.
template <class Records>
std::vector<std::int32_t> InOrder(const Records& records)
{
    std::vector<std::int32_t> order = {0};
    std::vector<std::int32_t> ahead = {records(0).firstChild};
    while (!ahead.empty()) {
        const std::int32_t at = ahead.back();
        ahead.pop_back();
        if (at == 0)
            continue;
        order.push_back(at);
        ahead.push_back(records(at).nextSibling);
        ahead.push_back(records(at).firstChild);
    }
    return order;
}

// What differs between a record and the one made afresh, whose links have been made those of the
// former's numbers.
const char* Difference(const MXmlElementRecord& kept, const MXmlElementRecord& made)
{
    return kept.start != made.start && !made.IsDocument() ? "the start"
           : kept.length != made.length                   ? "the length"
           : kept.tagLengths != made.tagLengths           ? "a tag length"
           : kept.flagsAndLevel != made.flagsAndLevel     ? "the level or a flag"
           : kept.parent != made.parent                   ? "the parent"
           : kept.firstChild != made.firstChild           ? "the first child"
           : kept.nextSibling != made.nextSibling         ? "the next sibling"
           : kept.previousSibling != made.previousSibling ? "the previous sibling"
                                                          : nullptr;
}

std::string WrongIndex(const MXmlMarkup& document)
{
    LiteralIndex fresh = ParseLiterally(document.GetDocumentText(),
                                        (document.GetDocumentFlags() & XmlDocIgnoreCase) != 0);
    const auto kept = InOrder([&](std::int32_t i) { return document.GetRecord(i); });
    const auto made =
        InOrder([&](std::int32_t i) { return fresh.records[static_cast<std::size_t>(i)]; });
    if (kept.size() != made.size())
        return "the number of elements is wrong";
    // A text is indexed in its order, so the number of a fresh record is its place.
    for (std::size_t i = 0; i < kept.size(); ++i) {
        MXmlElementRecord& record = fresh.records[i];
        for (std::int32_t* link :
             {&record.parent, &record.firstChild, &record.nextSibling, &record.previousSibling})
            *link = kept[static_cast<std::size_t>(*link)];
        if (const char* what = Difference(document.GetRecord(kept[i]), record))
            return what + (" of element " + std::to_string(i) + " is wrong");
    }
    return std::string();
}

bool Encloses(const std::wstring& node, const std::wstring& opening, const std::wstring& ending)
{
    return node.size() >= opening.size() + ending.size() &&
           node.compare(0, opening.size(), opening) == 0 &&
           node.compare(node.size() - ending.size(), ending.size(), ending) == 0;
}

bool NodeIsThere(const MXmlMarkup& document)
{
    const std::size_t size = document.GetDocumentText().size();
    const auto offset = static_cast<std::size_t>(document.GetNodeOffset());
    const auto length = static_cast<std::size_t>(document.GetNodeLength());
    if (length == 0)
        return true;
    if (offset > size || length > size - offset)
        return false;
    const std::wstring node = document.GetDocumentText().substr(offset, length);
    switch (document.GetNodeType()) {
    case XmlNodeCdata:
        return Encloses(node, L"<![CDATA[", L"]]>");
    case XmlNodeInstruction:
        return Encloses(node, L"<?", L"?>");
    case XmlNodeComment:
        return Encloses(node, L"<!--", L"-->");
    case XmlNodeDoctype:
        return Encloses(node, L"<!", L">");
    default:
        return node.find_first_of(L"<>") == std::wstring::npos;
    }
}

} // namespace

std::string BrokenRule(const MXmlMarkup& document)
{
    for (const auto check : {BrokenStore, BrokenPosition, BrokenDeletedList, BrokenTree}) {
        const std::string broken = check(document);
        if (!broken.empty())
            return broken;
    }
    return std::string();
}

bool SpansText(const MXmlMarkup& document)
{
    return static_cast<std::size_t>(document.GetRecord(0).length) ==
           document.GetDocumentText().size();
}

bool AllHaveStartTags(const MXmlMarkup& document)
{
    for (std::int32_t i = 1; i < document.GetRecordCount(); ++i) {
        if (IsLive(document, i) && document.GetRecord(i).StartTagLength() == 0)
            return false;
    }
    return true;
}

std::string StaleIndex(const MXmlMarkup& document)
{
    return NodeIsThere(document) ? WrongIndex(document) : "the position is not on the node";
}
