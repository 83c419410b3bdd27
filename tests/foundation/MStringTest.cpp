#include "foundation/MString.h"

#include "tests/support/Allocations.h"

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <utility>

namespace
{

/// A string, and what it is told to be.
struct Told {
    void Assign(const std::wstring& newText) { capacity = (text = newText).size(); }
    void Append(std::wstring more) { capacity = std::max(capacity, (text += more).size()); }
    void TakeOver(Told& other)
    {
        text = std::move(other.text);
        capacity = other.capacity;
        other.Assign(L"");
    }
    bool IsTrue() const
    {
        return text == string.c_str() && text.size() == std::size_t(string.GetLength()) &&
               capacity == std::size_t(string.GetCapacity()) && text.empty() == string.IsEmpty();
    }

    MString string;
    std::wstring text;
    std::size_t capacity = 0;
};

std::mt19937 draw;

std::wstring RandomText()
{
    std::wstring text(draw() % 6, L'a');
    for (wchar_t& character : text)
        character = L"ab\xFFFF"[draw() % 3];
    return text;
}

/// Whether `operation` on `told` had the memory it needed; if not, it has changed nothing.
bool Done(const Told& told, const std::function<void()>& operation)
{
    const wchar_t* const before = told.string.c_str();
    const int nth = draw() % 5 == 0 ? 1 : 1000;
    const auto outcome = RunShortOfMemory(AllocationFailure::Throws, nth, operation);
    EXPECT_TRUE(outcome == ShortageOutcome::NotMet ||
                (outcome == ShortageOutcome::RaisedBadAlloc && before == told.string.c_str()));
    return outcome == ShortageOutcome::NotMet;
}

void AssignOrAppend(Told& a, Told& b)
{
    const std::wstring text = RandomText();
    const MString& source = b.string;
    const bool same = &a == &b;
    const struct {
        std::function<void()> change, told;
    } operations[] = {
        {[&] { a.string = text.c_str(); }, [&] { a.Assign(text); }},
        {[&] { a.string = source; }, [&] { same ? void() : a.Assign(b.text); }},
        {[&] { a.string = MString(source); }, [&] { a.Assign(b.text); }},
        {[&] { a.string = std::move(b.string); }, [&] { same ? void() : a.TakeOver(b); }},
        {[&] { a.string += text.c_str(); }, [&] { a.Append(text); }},
        {[&] { a.string += source; }, [&] { a.Append(b.text); }},
        {[&] { a.string.Format(L"%ls%ls", a.string.c_str(), source.c_str()); },
         [&] { a.Assign(a.text + b.text); }}};
    const auto& chosen = operations[draw() % (a.text.size() < 100 ? 7 : 4)];
    if (Done(a, chosen.change))
        chosen.told();
}

/// The old text stays in a buffer that is left alone, its length too; another is filled. What is
/// written behind the text stays as well where it has room.
void MakeRoom(Told& a)
{
    const std::uint32_t extra = draw() % 6;
    if (Done(a, [&] { a.string.Reserve(extra); }))
        a.capacity = std::max(a.capacity, a.text.size() + extra);

    const std::size_t length = a.text.size();
    if (a.capacity > length)
        a.string.GetBuffer(0, false)[length + 1] = L'c';

    const int asked = static_cast<int>(draw() % 12) - 2;
    const std::size_t wanted = std::size_t(std::max(asked, 0));
    const bool shrink = draw() % 2;
    const bool kept = a.string.c_str() != MString().c_str() && a.capacity >= wanted &&
                      (a.capacity == wanted || !shrink);
    const std::wstring written(a.string.c_str(),
                               wanted < a.capacity ? std::min(wanted, length + 2) : length);
    wchar_t* buffer = nullptr;
    if (!Done(a, [&] { buffer = a.string.GetBuffer(asked, shrink); }) || kept)
        return;
    EXPECT_EQ(written, std::wstring(buffer, written.size()));
    a.Assign(std::wstring(wanted, L'b'));
    *std::fill_n(buffer, wanted, L'b') = L'\0';
}

void Look(const Told& a, const Told& b)
{
    const int order = a.text.compare(b.text);
    EXPECT_EQ((order > 0) - (order < 0), MString::Compare(a.string, b.string));
    const std::wstring needle = RandomText();
    const std::size_t start = draw() % (a.text.size() + 1);
    const std::size_t found = needle.empty() ? std::wstring::npos : a.text.find(needle, start);
    EXPECT_EQ(int(found), a.string.Find(needle.c_str(), int(start)));
    for (const int taken : {-1, 0, 1, 2, int(MString::toEnd)})
        EXPECT_EQ(taken > 0 ? a.text.substr(start, std::size_t(taken)) : L"",
                  a.string.Mid(int(start), taken).c_str());
    EXPECT_EQ(0, a.string.Mid(int(a.text.size()) + 1).GetLength());
}

} // namespace

TEST(MString, DoesWhatItIsToldAndNothingWhereMemoryIsShort)
{
    Told strings[4];
    for (int step = 0; step < 20000; ++step) {
        Told &a = strings[draw() % 4], &b = strings[draw() % 4];
        AssignOrAppend(a, b);
        ASSERT_TRUE(a.IsTrue() && b.IsTrue()) << step;
        MakeRoom(b);
        ASSERT_TRUE(b.IsTrue()) << step;
        Look(a, b);
    }
}

TEST(MString, NullTextIsEmptyAndANullAnswerIsRaisedByConstructorsAndABadAllocElsewhere)
{
    const wchar_t* const none = nullptr;
    MString text(none), source(L"longer");
    EXPECT_STREQ(L"", (text += none).c_str());
    const auto outcome = [](auto operation) {
        return RunShortOfMemory(AllocationFailure::AnswersNull, 1, operation);
    };
    for (const auto raised : {outcome([] { MString(L"x"); }), outcome([&] { MString x(source); })})
        EXPECT_EQ(ShortageOutcome::RaisedMException, raised);
    for (const auto raised :
         {outcome([&] { text = static_cast<const MString&>(source); }),
          outcome([&] { text.Reserve(1); }), outcome([&] { text.GetBuffer(1, false); }),
          outcome([&] { text.Format(L"%d", 1); }), outcome([&] { source.Mid(1); })})
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, raised);
    EXPECT_THROW(source.Reserve(MString::toEnd), std::length_error);
}
