#include "fuzz/XmlInvariants.h"

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

bool NodeIsInText(const MXmlMarkup& document)
{
    return document.GetNodeOffset() >= 0 && document.GetNodeLength() >= 0 &&
           static_cast<std::size_t>(document.GetNodeOffset()) +
                   static_cast<std::size_t>(document.GetNodeLength()) <=
               document.GetDocumentText().size();
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

// All records in the order of the document.
std::vector<MXmlElementRecord> InOrder(const MXmlMarkup& document)
{
    std::vector<MXmlElementRecord> records;
    std::vector<std::int32_t> ahead = {document.GetRecord(0).firstChild};
    while (!ahead.empty()) {
        const std::int32_t at = ahead.back();
        ahead.pop_back();
        if (at == 0)
            continue;
        records.push_back(document.GetRecord(at));
        ahead.push_back(records.back().nextSibling);
        ahead.push_back(records.back().firstChild);
    }
    return records;
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
    if (!NodeIsInText(document))
        return "the current node lies outside the text";
    MXmlMarkup fresh;
    fresh.SetDocumentFlags(document.GetDocumentFlags());
    fresh.LoadText(document.GetDocumentText().c_str());
    const std::vector<MXmlElementRecord> kept = InOrder(document);
    const std::vector<MXmlElementRecord> made = InOrder(fresh);
    if (kept.size() != made.size())
        return "the number of elements is wrong";
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const std::string which = " of element " + std::to_string(i) + " is wrong";
        if (kept[i].start != made[i].start)
            return "the start" + which;
        if (kept[i].length != made[i].length)
            return "the length" + which;
        if (kept[i].StartTagLength() != made[i].StartTagLength() ||
            kept[i].EndTagLength() != made[i].EndTagLength())
            return "a tag length" + which;
        if (kept[i].Level() != made[i].Level() ||
            kept[i].Has(XmlElementNoEndTag) != made[i].Has(XmlElementNoEndTag) ||
            kept[i].Has(XmlElementFirstChild) != made[i].Has(XmlElementFirstChild))
            return "the level or a flag" + which;
    }
    return std::string();
}
