#include "bench/XmlEditBench.h"

#include "bench/support/Comparison.h"
#include "bench/support/Report.h"
#include "bench/support/Sample.h"
#include "bench/support/TickClock.h"
#include "xml/MXmlMarkup.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <functional>
#include <random>
#include <sstream>

namespace
{

using boost::property_tree::wptree;

const int editCount = 10000;
const int editsTogether = 250;
const std::size_t groupCount = 1000;
const int valuesOfAGroup = 99;
const std::wstring oldValue = L"int";
const std::wstring newValue = L"a longer one";
const std::wstring newElement = L"<Title>new</Title>\n";

void Append(MXmlMarkup& document, int depth, int elements)
{
    document.LoadText(nullptr);
    for (int i = 0; i < depth; ++i) {
        document.AddElement(L"Level", nullptr, 0);
        document.EnterElement();
    }
    for (int i = 0; i < elements; ++i) {
        document.AddElement(L"Count", L"42", 0);
        document.SetAttribute(document.GetMainIndex(), L"type", L"int");
    }
}

std::wstring MakeGroups()
{
    std::wstring text = L"<Groups>\n";
    for (std::size_t i = 0; i < groupCount; ++i) {
        text += L"<Group>\n";
        for (int j = 0; j < valuesOfAGroup; ++j)
            text += L"<Count type=\"" + oldValue + L"\">" + std::to_wstring(j) + L"</Count>\n";
        text += L"</Group>\n";
    }
    return text + L"</Groups>\n";
}

/// The groups, each of which can be gone to at once.
class EditedDocument
{
public:
    explicit EditedDocument(const std::wstring& text)
    {
        document.LoadText(text.c_str());
        document.FindElement();
        document.EnterElement();
        while (document.FindElement()) {
            groups.push_back(std::to_wstring(groups.size()));
            document.SavePosition(groups.back().c_str());
        }
    }

    void SetAttribute(std::uint32_t place)
    {
        const std::uint32_t elements = groupCount * (valuesOfAGroup + 1);
        document.SetAttribute(static_cast<std::int32_t>(2 + place % elements), L"type",
                              newValue.c_str());
    }

    void AddElement(std::uint32_t place)
    {
        document.RestorePosition(groups[place % groups.size()].c_str());
        document.AddElement(L"Title", L"new", XmlAddChild);
    }

private:
    MXmlMarkup document;
    std::vector<std::wstring> groups;
};

class EditedTree
{
public:
    explicit EditedTree(const std::wstring& text)
    {
        std::wistringstream stream(text);
        boost::property_tree::read_xml(stream, tree,
                                       boost::property_tree::xml_parser::trim_whitespace);
        for (auto& group : tree.get_child(L"Groups")) {
            groups.push_back(&group.second);
            elements.push_back(&group.second);
            for (auto& value : group.second)
                elements.push_back(&value.second);
        }
    }

    void SetAttribute(std::uint32_t place)
    {
        elements[place % elements.size()]->put(L"<xmlattr>.type", newValue);
    }

    void AddElement(std::uint32_t place)
    {
        groups[place % groups.size()]->push_back({L"Title", wptree(L"new")});
    }

private:
    wptree tree;
    std::vector<wptree*> groups;
    std::vector<wptree*> elements;
};

/// What each edit comes down to, and nothing else: what lies behind it makes way.
class MovedByHand
{
public:
    explicit MovedByHand(const std::wstring& text) : characters(text)
    {
        MXmlMarkup document;
        document.LoadText(text.c_str());
        for (std::int32_t i = 0; i < document.GetRecordCount(); ++i)
            records.push_back(document.GetRecord(i));
    }

    void SetAttribute(std::uint32_t place)
    {
        MakeWay(3 + place % (records.size() - 3), newValue.size() - oldValue.size());
    }

    void AddElement(std::uint32_t place)
    {
        const std::size_t group = place % (groupCount - 1);
        MakeWay(2 + (group + 1) * (valuesOfAGroup + 1), newElement.size());
    }

private:
    void MakeWay(std::size_t behind, std::size_t length)
    {
        characters.insert(static_cast<std::size_t>(records[behind].start), length, L' ');
        for (std::size_t i = behind; i < records.size(); ++i)
            records[i].start += static_cast<std::int32_t>(length);
    }

    std::wstring characters;
    std::vector<MXmlElementRecord> records;
};

/// Edits at the same places, whatever is edited.
template <class Edited>
class Edits
{
public:
    using Edit = void (Edited::*)(std::uint32_t place);

    Edits(const std::wstring& text, Edit edit) : edited(text), edit(edit) {}

    /// Goes on with some, and answers the nanoseconds of one.
    double GoOn()
    {
        const std::uint64_t begin = TickClock::Now();
        for (int i = 0; i < editsTogether; ++i)
            (edited.*edit)(static_cast<std::uint32_t>(random()));
        return TickClock::Nanoseconds(TickClock::Now() - begin) / editsTogether;
    }

private:
    Edited edited;
    Edit edit;
    std::mt19937 random;
};

/// Our times beside those of another.
class Beside
{
public:
    void Add(double our, double other)
    {
        ourTimes.Add(our);
        otherTimes.Add(other);
        ratios.Add(our / other);
    }

    void Show(const std::string& what, double bar)
    {
        Report::Ratio(what.c_str(), ourTimes, otherTimes, ratios, bar);
    }

private:
    Sample ourTimes;
    Sample otherTimes;
    Sample ratios;
};

void CompareEdits(const std::string& what, Edits<EditedDocument>::Edit ours,
                  Edits<EditedTree>::Edit theirs, Edits<MovedByHand>::Edit byHand)
{
    const std::wstring text = MakeGroups();
    Edits<EditedDocument> document(text, ours);
    Edits<EditedTree> tree(text, theirs);
    Edits<MovedByHand> moved(text, byHand);
    Beside besideTree;
    Beside besideMoved;
    for (int done = 0; done < editCount; done += editsTogether) {
        const double our = document.GoOn();
        besideTree.Add(our, tree.GoOn());
        besideMoved.Add(our, moved.GoOn());
    }
    besideTree.Show(what + " : PropertyTree", 0);
    besideMoved.Show(what + " : text and records moved by hand", 1.25);
}

} // namespace

void XmlEditBench::CompareAppends()
{
    Report::Columns("AddElement and SetAttribute : the same, a tenth of the elements");
    for (int depth : {1, 100}) {
        const std::string what = "100,000 elements at depth " + std::to_string(depth);
        MXmlMarkup document;
        const auto appendAgain = [&](int rounds) {
            return [&document, depth, rounds](unsigned) {
                for (int i = 0; i < rounds; ++i)
                    Append(document, depth, 100000 / rounds);
            };
        };
        Comparison(what.c_str(), 1, appendAgain(1), appendAgain(10)).AtMost(1.2);
        const auto appendAnew = [&](int rounds) {
            return [depth, rounds](unsigned) {
                for (int i = 0; i < rounds; ++i) {
                    MXmlMarkup fresh;
                    Append(fresh, depth, 100000 / rounds);
                }
            };
        };
        Comparison((what + ", new memory").c_str(), 1, appendAnew(1), appendAnew(10)).Show();
    }
}

void XmlEditBench::CompareScatteredEdits()
{
    Report::Columns("10,000 edits all over 100,000 elements, each");
    CompareEdits("SetAttribute", &EditedDocument::SetAttribute, &EditedTree::SetAttribute,
                 &MovedByHand::SetAttribute);
    CompareEdits("AddElement", &EditedDocument::AddElement, &EditedTree::AddElement,
                 &MovedByHand::AddElement);
}
