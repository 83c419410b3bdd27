#include "bench/PropertyTreePeer.h"

#include "foundation/MException.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <map>
#include <sstream>
#include <utility>
#include <vector>

using boost::property_tree::wptree;

namespace
{

template <class T>
void AddValue(wptree& parent, const wchar_t* tag, const wchar_t* family, const T& value)
{
    wptree node;
    node.put_value(value);
    node.put(L"<xmlattr>.type", family);
    parent.push_back(std::make_pair(tag, std::move(node)));
}

std::wstring Write(const wptree& document)
{
    std::wostringstream out;
    boost::property_tree::write_xml(out, document);
    return out.str();
}

wptree Read(const std::wstring& text)
{
    std::wistringstream in(text);
    wptree document;
    boost::property_tree::read_xml(in, document);
    return document;
}

double ReadValue(const std::wstring& tag, const wptree& node)
{
    if (tag == L"Number")
        return node.get_value<int>();
    if (tag == L"Ratio")
        return node.get_value<double>();
    if (tag == L"Open")
        return node.get_value<unsigned short>();
    return static_cast<double>(node.get_value<std::wstring>().size());
}

void AddError(wptree& parent, const MError& error)
{
    wptree node;
    AddValue(node, L"Code", L"string", std::wstring(error.GetCode().c_str()));
    for (const auto& parameter : error.GetParameters()) {
        wptree group;
        AddValue(group, L"Name", L"string", std::wstring(parameter.first.c_str()));
        AddValue(group, L"Value", L"string", std::wstring(parameter.second.c_str()));
        node.push_back(std::make_pair(L"Parameter", std::move(group)));
    }
    parent.push_back(std::make_pair(L"Error", std::move(node)));
}

struct ReadError {
    std::wstring code;
    std::map<std::wstring, std::wstring> parameters;
};

} // namespace

std::wstring PropertyTreePeer::WriteValues(unsigned count)
{
    wptree document;
    wptree& root = document.put_child(L"Values", wptree());
    for (unsigned i = 0; i < count; i += 4) {
        AddValue(root, L"Number", L"int", static_cast<int>(i));
        AddValue(root, L"Title", L"string", std::wstring(L"a text of moderate length"));
        AddValue(root, L"Ratio", L"float", i * 0.25);
        AddValue(root, L"Open", L"bool", static_cast<unsigned short>(1));
    }
    return Write(document);
}

double PropertyTreePeer::ReadValues(const std::wstring& text)
{
    const wptree document = Read(text);
    double sum = 0;
    for (const wptree::value_type& node : document.get_child(L"Values"))
        sum += ReadValue(node.first, node.second);
    return sum;
}

std::wstring PropertyTreePeer::WriteChain(const MException& exception)
{
    wptree document;
    wptree& chain = document.put_child(L"ExceptionChain.Exception", wptree());
    for (std::uint32_t i = 0; i < exception.GetErrorCount(); ++i)
        AddError(chain, *exception.GetError(static_cast<std::int32_t>(i)));
    return Write(document);
}

unsigned PropertyTreePeer::ReadChain(const std::wstring& text)
{
    const wptree document = Read(text);
    std::vector<ReadError> errors;
    unsigned count = 0;
    for (const wptree::value_type& node : document.get_child(L"ExceptionChain.Exception")) {
        errors.emplace_back();
        errors.back().code = node.second.get<std::wstring>(L"Code");
        for (const wptree::value_type& child : node.second)
            if (child.first == L"Parameter")
                errors.back().parameters.emplace(child.second.get<std::wstring>(L"Name"),
                                                 child.second.get<std::wstring>(L"Value"));
        count += 1 + static_cast<unsigned>(errors.back().parameters.size());
    }
    return count;
}
