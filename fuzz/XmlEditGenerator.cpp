#include "fuzz/XmlEditGenerator.h"

namespace
{

const std::uint32_t leavesOutEndTag = 0x10;

} // namespace

std::string XmlEditGenerator::Input(int operations)
{
    std::string input = OneOf({"", "<?xml version='1.0'?>\n", "<!DOCTYPE a [<!ELEMENT a (b)>]>"});
    input += Element(3) + OneOf({"", "\n", "<!-- end -->"});
    for (int i = 0; i < operations; ++i)
        input += "|" + Operation();
    return input;
}

std::string XmlEditGenerator::OneOf(std::initializer_list<const char*> choices)
{
    return choices.begin()[Below(static_cast<std::uint32_t>(choices.size()))];
}

// With whatever has to be escaped, and neither "," nor "|".
std::string XmlEditGenerator::Data()
{
    return OneOf({"", "x", " ", "\n", "x y", "<", "&", "a>b", "&lt;", "'\"", "]]>", "\xC4\xFF"});
}

std::string XmlEditGenerator::StartTag(const std::string& name)
{
    return "<" + name +
           OneOf({"", "", " ", " b='1'", " b=\"<\" a2='/>'", "\n  item='' ", " a=\">\""});
}

std::string XmlEditGenerator::Element(int depth)
{
    const std::string name = Name();
    const std::string tag = StartTag(name);
    return Below(4) == 0 ? tag + "/>"
                         : tag + ">" + Content(depth) + "</" + name + OneOf({">", " >"});
}

std::string XmlEditGenerator::Content(int depth)
{
    std::string content;
    for (std::uint32_t pieces = Below(4); pieces > 0; --pieces) {
        content += depth > 0 && Below(2) == 0 ? Element(depth - 1)
                                              : OneOf({"x", "\n", " ", "x &amp; y", "<!-- c -->",
                                                       "<?p i?>", "<![CDATA[<a>]]>", "1>2"});
    }
    return content;
}

std::string XmlEditGenerator::Operation()
{
    if (Below(2) == 0)
        return OneOf({"f0", "f0", "f0", "e", "e", "f0a", "f0item", "l", "s0", "s0p", "r0", "r0p"});
    switch (Below(7)) {
    case 0:
        return "m0" + Content(2);
    case 6:
        return "w" + Choice(Below(256) & ~leavesOutEndTag) + Name() + "," + Content(2);
    case 1:
        return "t0" + Name() + "," + Data();
    case 2:
        return "x" + Choice(Below(16)) + Name() + "," + Data();
    case 3:
        return AddNode();
    default:
        return "a" + Choice(Below(256) & ~leavesOutEndTag) + Name() + "," + Data();
    }
}

std::string XmlEditGenerator::AddNode()
{
    const std::uint32_t place = Below(4) << 5;
    switch (Below(5)) {
    case 0:
        return "n" + Choice(place) + Name();
    case 1:
        return "n" + Choice(place | 1 | Below(2) << 1) + Data();
    case 2:
        return "n" + Choice(place | 4) + OneOf({"p", "p i", ""});
    case 3:
        return "n" + Choice(place | 5) + OneOf({"c", " c c ", ""});
    default:
        return "n" + Choice(place | 6) + "<!DOCTYPE a>";
    }
}

// As the player reads what chooses flags, types or records.
std::string XmlEditGenerator::Choice(std::uint32_t choice)
{
    const char c = static_cast<char>(choice ^ '0');
    return std::string(1, c == '|' ? '0' : c);
}
