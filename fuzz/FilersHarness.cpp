#include "fuzz/FilersHarness.h"

#include "filers/MInFilerTaggedXml.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

namespace
{

const unsigned char guard = 0xA5;

/// A result with guards around it.
template <class T>
struct Guarded {
    Guarded() { std::memset(this, guard, sizeof *this); }

    bool IsIntact() const
    {
        for (std::size_t i = 0; i < sizeof before; ++i)
            if (before[i] != guard || after[i] != guard)
                return false;
        return true;
    }

    unsigned char before[16];
    T result;
    unsigned char after[16];
};

bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

/// Two readers of the same that are asked the same, so that they must answer the same.
class FilerPlayer
{
public:
    FilerPlayer(IInFilerTagged& filer, IInFilerTagged& other) : filer(filer), other(other)
    {
        told.precision(10);
    }

    std::string Do(char operation, const MString& tag)
    {
        switch (operation) {
        case 's':
            return ReadText(&IInFilerTagged::ReadString, tag);
        case 'c':
            return Read<char>(&IInFilerTagged::ReadChar, tag, true);
        case 'd':
            return Read<double>(&IInFilerTagged::ReadDouble, tag, true);
        case 'f':
            return Read<float>(&IInFilerTagged::ReadFloat, tag, true);
        case 'b':
            return Read<bool>(&IInFilerTagged::ReadBool, tag, false);
        case 'y':
            return Read<unsigned char>(&IInFilerTagged::ReadByte, tag, false);
        case 'u':
            return Read<unsigned short>(&IInFilerTagged::ReadUInt16, tag, false);
        case 'i':
            return Read<short>(&IInFilerTagged::ReadInt16, tag, false);
        case 'U':
            return Read<unsigned int>(&IInFilerTagged::ReadUInt32, tag, false);
        case 'I':
            return Read<int>(&IInFilerTagged::ReadInt32, tag, false);
        case '(':
            return Tell(filer.BeginGroup(tag), L"in") == other.BeginGroup(tag) ? ""
                                                                               : "groups differ";
        case ')':
            return Tell(filer.EndGroup(), L"out") == other.EndGroup() ? "" : "ends differ";
        case 'D':
            return ReadDocument(tag);
        default:
            return "";
        }
    }

    std::wstring Told() const { return told.str(); }

private:
    template <class T>
    bool Tell(bool answer, const T& delivered)
    {
        told << (answer ? L"" : L"(") << delivered << (answer ? L";" : L");");
        return answer;
    }

    template <class T, class ReadValue>
    std::string Read(ReadValue read, const MString& tag, bool failureGivesDefault)
    {
        const T defaultValue = static_cast<T>(1);
        Guarded<T> first;
        Guarded<T> second;
        if ((filer.*read)(tag, nullptr, defaultValue))
            return "read to nowhere";
        const bool found = (filer.*read)(tag, &first.result, defaultValue);
        if (found != (other.*read)(tag, &second.result, defaultValue))
            return "answers differ";
        if (!first.IsIntact() || !second.IsIntact())
            return "written outside the result";
        if (!Same(static_cast<double>(first.result), static_cast<double>(second.result)))
            return "results differ";
        if (!found && failureGivesDefault && first.result != defaultValue)
            return "not the default";
        Tell(found, static_cast<double>(first.result));
        return "";
    }

    template <class ReadValue>
    std::string ReadText(ReadValue read, const MString& tag)
    {
        MString first;
        MString second;
        const bool found = (filer.*read)(tag, first, L"default");
        if (found != (other.*read)(tag, second, L"default") || MString::Compare(first, second) != 0)
            return "texts differ";
        Tell(found, first.c_str());
        return found || MString::Compare(first, L"default") == 0 ? "" : "not the default";
    }

    std::string ReadDocument(const MString& tag)
    {
        MString text(L"untouched");
        MString otherText;
        if (!Tell(filer.ReadDocument(tag, text), L"document"))
            return text.IsEmpty() && !other.ReadDocument(tag, otherText) ? "" : "text of a failure";
        if (!other.ReadDocument(tag, otherText) || MString::Compare(text, otherText) != 0)
            return "documents differ";
        MInFilerTaggedXml embedded(text, L"MFilerTaggedXml", nullptr);
        return embedded.EndGroup() ? "" : "a document that cannot be read";
    }

    IInFilerTagged& filer;
    IInFilerTagged& other;
    std::wostringstream told;
};

const char* const tags[] = {"a", "b", "v", "w"};
const char* const families[] = {"string", "char", "byte", "bool", "uint", "int", "float"};
const char* const texts[] = {
    "1", "-1",       "99999999999999", "1e999",   "1.#INF00",     "-inf",           "nan",  "", " ",
    "x", "&lt;&#0;", "&#x10FFFF;",     "&broken", "a<!-- b -->c", "<![CDATA[1]]>2", "70000"};
const char* const scraps[] = {"<", ">", "/>", "</a>", "<a",  "<!--", "<![CDATA[", "\"",
                              "'", "=", "&",  "<!D",  "<?x", "]]>",  "type=",     "<a/>"};

const char* const letters[] = {"s", "c", "d", "f", "b", "y", "u", "U", "i", "I", "(", ")", "D"};

class InputMaker
{
public:
    explicit InputMaker(unsigned number) : random(number) {}

    void Make(std::wstring& document, std::string& operations)
    {
        AddContent(6, 3);
        document = L"<r>" + std::wstring(text.begin(), text.end()) + L"</r>";
        for (unsigned damages = Below(4); damages > 0; --damages)
            Damage(document);
        operations.swap(script);
    }

private:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random() % limit); }

    template <std::size_t Count>
    std::string OneOf(const char* const (&choices)[Count])
    {
        return choices[Below(Count)];
    }

    void AddContent(unsigned most, unsigned depth)
    {
        for (unsigned count = Below(most); count > 0; --count) {
            const std::string tag = OneOf(tags);
            if (depth > 0 && Below(3) == 0)
                AddGroup(tag, depth);
            else
                AddValue(tag);
            if (Below(4) == 0)
                script += OneOf(letters) + OneOf(tags) + ";";
        }
    }

    void AddGroup(const std::string& tag, unsigned depth)
    {
        script += Below(4) == 0 ? "D" + tag + ";" : "(" + tag + ";";
        text += "<" + tag + ">";
        AddContent(5, depth - 1);
        text += "</" + tag + ">";
        script += ");";
    }

    void AddValue(const std::string& tag)
    {
        const unsigned family = Below(7);
        script += std::string(1, "scybUIduif"[Below(5) == 0 ? Below(10) : family]) + tag + ";";
        text += "<" + tag + " type=\"" + families[family] + "\">" + OneOf(texts) + "</" + tag + ">";
    }

    void Damage(std::wstring& document)
    {
        const std::size_t at = Below(static_cast<unsigned>(document.size()));
        const std::string scrap = OneOf(scraps);
        switch (Below(3)) {
        case 0:
            document.erase(at, 1 + Below(3));
            break;
        case 1:
            document.insert(at, std::wstring(scrap.begin(), scrap.end()));
            break;
        default:
            document[at] = static_cast<wchar_t>(1 + Below(Below(2) == 0 ? 127 : 0xFFFF));
        }
    }

    std::mt19937 random;
    std::string text;
    std::string script;
};

} // namespace

std::string PlayOnFilers(IInFilerTagged& filer, IInFilerTagged& other,
                         const std::string& operations, std::wstring* told)
{
    FilerPlayer player(filer, other);
    std::string broken;
    for (std::size_t at = 0; at < operations.size() && broken.empty();) {
        const std::size_t end = std::min(operations.find(';', at), operations.size());
        const std::wstring tag(operations.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                               operations.begin() + static_cast<std::ptrdiff_t>(end));
        broken = player.Do(operations[at], tag.c_str());
        at = end + 1;
    }
    if (told)
        *told = player.Told();
    return broken;
}

std::string PlayFilerInput(const std::wstring& document, const std::string& operations,
                           std::wstring* told)
{
    MInFilerTaggedXml filer(document.c_str(), nullptr, nullptr);
    MInFilerTaggedXml other(document.c_str(), nullptr, nullptr);
    return PlayOnFilers(filer, other, operations, told);
}

void MakeFilerInput(unsigned number, std::wstring& document, std::string& operations)
{
    InputMaker(number).Make(document, operations);
}
