#include "foundation/MString.h"

#include "tests/support/Allocations.h"

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// What a string is told to be: its text, the room for it, and whether it has a buffer.
struct Model {
    void Assign(const std::wstring& newText)
    {
        text = newText;
        capacity = text.size();
    }
    void Append(const std::wstring& more)
    {
        text += more;
        capacity = std::max(capacity, text.size());
    }

    std::wstring text;
    std::size_t capacity = 0;
};

/// A string and its model, driven at random. Now and then memory is short, and nothing may change.
class Strings
{
public:
    void Step()
    {
        static void (Strings::*const operations[])() = {
            &Strings::AssignText, &Strings::AssignCopy, &Strings::AssignMoved, &Strings::Append,
            &Strings::AppendText, &Strings::Reserve,    &Strings::Format,      &Strings::Part,
            &Strings::FillBuffer, &Strings::Look};
        a = Below(count);
        b = Below(count);
        (this->*operations[Below(sizeof operations / sizeof *operations)])();
        Compare();
    }

private:
    static const int count = 4;

    int Below(std::size_t limit) { return static_cast<int>(random() % limit); }

    /// Whether `operation` had the memory it needed; if not, it has changed nothing.
    template <class Operation>
    bool Done(Operation operation)
    {
        const wchar_t* const before = strings[a].c_str();
        const auto outcome =
            RunShortOfMemory(AllocationFailure::Throws, Below(5) == 0 ? 1 : 1000, operation);
        if (outcome == ShortageOutcome::NotMet)
            return true;
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
        EXPECT_EQ(before, strings[a].c_str());
        return false;
    }

    std::wstring RandomText()
    {
        std::wstring text(random() % 6, L'a');
        for (wchar_t& character : text)
            character = L"ab\xFFFF"[Below(3)];
        return text;
    }

    void AssignText()
    {
        const std::wstring text = RandomText();
        if (Done([&] { strings[a] = text.c_str(); }))
            models[a].Assign(text);
    }
    void AssignCopy()
    {
        const wchar_t* const before = strings[a].c_str();
        const MString& source = strings[b];
        if (!Done([&] { strings[a] = source; }) || a == b)
            return;
        EXPECT_TRUE(before != strings[a].c_str() || models[b].text.empty());
        models[a].Assign(models[b].text);
    }
    void AssignMoved()
    {
        if (a == b)
            return;
        const wchar_t* const moved = strings[b].c_str();
        strings[a] = std::move(strings[b]);
        EXPECT_EQ(moved, strings[a].c_str());
        models[a] = models[b];
        models[b] = Model();
    }
    void Append()
    {
        if (models[a].text.size() < 100 && Done([&] { strings[a] += strings[b]; }))
            models[a].Append(std::wstring(models[b].text));
    }
    void AppendText()
    {
        const std::wstring text = RandomText();
        if (Done([&] { strings[a] += text.c_str(); }))
            models[a].Append(text);
    }
    void Reserve()
    {
        const std::uint32_t extra = random() % 6;
        if (Done([&] { strings[a].Reserve(extra); }))
            models[a].capacity = std::max(models[a].capacity, models[a].text.size() + extra);
    }
    void Format()
    {
        if (models[a].text.size() < 100 &&
            Done([&] { strings[a].Format(L"%ls%ls", strings[a].c_str(), strings[b].c_str()); }))
            models[a].Assign(models[a].text + models[b].text);
    }
    void Part()
    {
        const std::wstring& text = models[b].text;
        const int start = Below(text.size() + 2);
        const int counts[] = {-1, 0, 1, 2, MString::toEnd};
        const int taken = counts[Below(5)];
        if (!Done([&] { strings[a] = strings[b].Mid(start, taken); }))
            return;
        models[a].Assign(
            static_cast<std::size_t>(start) < text.size() && taken > 0
                ? text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(taken))
                : L"");
    }

    // Keeps its own text in a buffer that stays; the length of that stays too.
    void FillBuffer()
    {
        Model& model = models[a];
        const int asked = Below(12) - 2;
        const auto wanted = static_cast<std::size_t>(std::max(asked, 0));
        const bool shrink = Below(2) != 0;
        const bool hasBuffer = strings[a].c_str() != MString().c_str();
        wchar_t* buffer = nullptr;
        if (!Done([&] { buffer = strings[a].GetBuffer(asked, shrink); }))
            return;
        EXPECT_EQ(buffer, strings[a].c_str());
        if (hasBuffer && model.capacity >= wanted && (model.capacity == wanted || !shrink))
            return;
        EXPECT_EQ(0, std::wcsncmp(model.text.c_str(), buffer, std::min(wanted, model.text.size())));
        model.Assign(std::wstring(wanted, L'b'));
        std::fill_n(buffer, wanted, L'b');
        buffer[wanted] = L'\0';
    }

    void Look()
    {
        const std::wstring& text = models[a].text;
        const std::wstring& other = models[b].text;
        const int order = text.compare(other);
        EXPECT_EQ((order > 0) - (order < 0), MString::Compare(strings[a], strings[b]));
        const std::wstring needle = RandomText();
        const std::size_t start = random() % (text.size() + 1);
        const std::size_t found = needle.empty() ? std::wstring::npos : text.find(needle, start);
        const MString asked(needle.c_str());
        EXPECT_EQ(static_cast<std::int32_t>(found),
                  strings[a].Find(asked, static_cast<std::int32_t>(start)));
    }

    void Compare()
    {
        for (int i = 0; i < count; ++i) {
            const MString& string = strings[i];
            EXPECT_EQ(models[i].text, std::wstring(string.c_str()));
            EXPECT_EQ(models[i].text.size(), static_cast<std::size_t>(string.GetLength()));
            EXPECT_EQ(models[i].capacity, static_cast<std::size_t>(string.GetCapacity()));
            EXPECT_EQ(models[i].text.empty(), string.IsEmpty());
        }
    }

    std::mt19937 random;
    MString strings[count];
    Model models[count];
    int a = 0, b = 0;
};

} // namespace

TEST(MString, DoesWhatItsModelDoesAndNothingWhereMemoryIsShort)
{
    Strings strings;
    for (int step = 0; step < 20000 && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        strings.Step();
    }
}

TEST(MString, NullTextIsEmptyAndANullAnswerIsRaisedByConstructorsAndABadAllocElsewhere)
{
    const wchar_t* const none = nullptr;
    MString text(none), longText(L"longer");
    EXPECT_STREQ(L"", (text += none).c_str());
    const auto outcome = [](auto operation) {
        return RunShortOfMemory(AllocationFailure::AnswersNull, 1, operation);
    };
    EXPECT_EQ(ShortageOutcome::RaisedMException, outcome([] { MString(L"x"); }));
    EXPECT_EQ(ShortageOutcome::RaisedMException, outcome([&] { MString copy(longText); }));
    EXPECT_EQ(ShortageOutcome::RaisedBadAlloc,
              outcome([&] { text = static_cast<const MString&>(longText); }));
    EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome([&] { text.Reserve(1); }));
    EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome([&] { text.GetBuffer(1, false); }));
    EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome([&] { text.Format(L"%d", 1); }));
    EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome([&] { longText.Mid(1); }));
    EXPECT_THROW(longText.Reserve(MString::toEnd), std::length_error);
}
