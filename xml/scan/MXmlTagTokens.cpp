#include "xml/scan/MXmlTagTokens.h"
#include "xml/scan/XmlCharacters.h"

namespace
{

void SkipSpace(MXmlTokenCursor& cursor)
{
    while (XmlCharacters::IsSpace(cursor.text[cursor.next]))
        ++cursor.next;
}

// Makes the token from `next` to the first character that `ends`, or of one character if it would
// be empty.
template <class Ends>
void TakeRun(MXmlTokenCursor& cursor, Ends ends)
{
    cursor.start = cursor.next;
    while (!ends(cursor.text[cursor.next]))
        ++cursor.next;
    if (cursor.next == cursor.start && cursor.text[cursor.next] != 0)
        ++cursor.next;
    cursor.end = cursor.next - 1;
}

void TakeQuoted(MXmlTokenCursor& cursor)
{
    const wchar_t quote = cursor.text[cursor.next];
    cursor.start = cursor.next + 1;
    do
        ++cursor.next;
    while (cursor.text[cursor.next] != quote && cursor.text[cursor.next] != 0);
    cursor.end = cursor.next - 1;
    if (cursor.text[cursor.next] != 0)
        ++cursor.next;
}

void TakeAttributeToken(MXmlTokenCursor& cursor, bool behindEquals)
{
    cursor.flags &= ~XmlCursorQuoted;
    if (XmlCharacters::IsQuote(cursor.text[cursor.next])) {
        cursor.flags |= XmlCursorQuoted;
        TakeQuoted(cursor);
    } else if (behindEquals) {
        TakeRun(cursor, XmlCharacters::EndsAttributeValue);
    } else {
        TakeRun(cursor, XmlCharacters::EndsAttributeName);
    }
}

// The search of `FindXmlAttribute`, one token after the other.
class MAttributeSearch
{
public:
    MAttributeSearch(MXmlTokenCursor& tagCursor, const wchar_t* wanted, std::int32_t wantedNumber)
        : cursor(tagCursor), name(wanted), number(wantedNumber)
    {
    }

    bool Run()
    {
        for (;;) {
            before = cursor.next;
            SkipSpace(cursor);
            const std::int32_t space = cursor.next - before;
            if (cursor.text[cursor.next] == 0)
                return Leave();
            TakeAttributeToken(cursor, behindEquals);
            if (behindEquals || cursor.Quoted()) {
                if (matched)
                    return behindEquals || Leave();
                behindEquals = false;
                continue;
            }
            const wchar_t first = *cursor.Token();
            if (first == L'=') {
                behindEquals = true;
                continue;
            }
            if (matched || first == L'>' || first == L'/' || first == L'?')
                return Leave();
            if (count >= 0 && TakesName(space))
                return true;
            ++count;
        }
    }

private:
    // A name. By number, the search is over with it; by name, its value comes next.
    bool TakesName(std::int32_t space)
    {
        if (!name)
            return count == number;
        if (XmlTokenMatches(cursor, name)) {
            matched = true;
            nameStart = cursor.start;
            nameEnd = cursor.end;
            cursor.matchStart = before;
            cursor.matchSpace = space;
        }
        return false;
    }

    // Back on a name without a value, or to where a new attribute goes.
    bool Leave()
    {
        cursor.next = before;
        if (!matched)
            return false;
        cursor.flags &= ~XmlCursorQuoted;
        cursor.start = nameStart;
        cursor.end = nameEnd;
        cursor.next = nameEnd + 1;
        return true;
    }

    MXmlTokenCursor& cursor;
    const wchar_t* name;
    std::int32_t number;
    // The tag's own name does not count.
    std::int32_t count = -1;
    bool behindEquals = false;
    bool matched = false;
    std::int32_t before = 0;
    std::int32_t nameStart = 0;
    std::int32_t nameEnd = -1;
};

} // namespace

bool NextXmlNameToken(MXmlTokenCursor& cursor)
{
    SkipSpace(cursor);
    TakeRun(cursor, XmlCharacters::EndsNameToken);
    return cursor.end >= cursor.start;
}

bool XmlTokenMatches(const MXmlTokenCursor& cursor, const wchar_t* name)
{
    const std::int32_t length = cursor.TokenLength();
    return XmlCharacters::Equal(cursor.Token(), name, length,
                                (cursor.flags & XmlDocIgnoreCase) != 0) &&
           XmlCharacters::MayFollowMatch(name[length]);
}

bool FindXmlAttribute(MXmlTokenCursor& cursor, const wchar_t* name, std::int32_t number)
{
    return MAttributeSearch(cursor, name, number).Run();
}
