#include "foundation/MTypedPtrArray.h"

#include "tests/support/Allocations.h"

#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

typedef MTypedPtrArray<MString, const MString&> StringArray;

const wchar_t none[] = L"no element";

/// An array, and the slots that it is told to have.
struct Told {
    std::size_t Grown(std::size_t minimum) const
    {
        const auto step = static_cast<std::size_t>(static_cast<float>(slots.size()) * factor);
        return std::max({minimum, slots.size() + 1, factor > 1 ? step : 0});
    }
    void Resize(std::size_t size)
    {
        slots.resize(size, none);
        count = std::min(count, size);
    }
    bool IsTrue()
    {
        bool alike = array.GetCount() == int(count) && array.GetAllocated() == int(slots.size());
        for (std::size_t i = 0; alike && i < slots.size(); ++i)
            alike = slots[i] == none || slots[i] == array.GetAt(int(i)).c_str();
        return alike;
    }

    StringArray array;
    std::vector<std::wstring> slots;
    std::size_t count = 0;
    float factor = 0;
};

} // namespace

TEST(MTypedPtrArray, DoesWhatItIsToldAndRaisesAndChangesNothingWhereMemoryIsShort)
{
    std::mt19937 random;
    Told told;
    StringArray& array = told.array;
    for (int step = 0; step < 20000; ++step) {
        const std::size_t size = random() % 40;
        const std::size_t slot = random() % std::max<std::size_t>(told.slots.size(), 1);
        const std::wstring text(random() % 3, L'x');
        const MString value(text.c_str());
        const auto add = [&] {
            if (told.count == told.slots.size())
                told.Resize(told.Grown(0));
            told.slots[told.count++] = text;
        };
        const auto remove = [&] {
            told.slots.insert(told.slots.begin() + int(told.count--), none);
            told.slots.erase(told.slots.begin() + int(slot));
        };
        const auto removeAll = [&] { // an array without elements keeps what it has made
            if (std::exchange(told.count, 0) > 0)
                std::fill(told.slots.begin(), told.slots.end(), none);
        };
        const struct {
            bool possible;
            std::function<void()> change, told;
        } operations[] = {{true, [&] { array.Resize(int(size)); }, [&] { told.Resize(size); }},
                          {told.slots.size() < 40, [&] { array.Grow(int(size)); },
                           [&] { told.Resize(told.Grown(size)); }},
                          {!told.slots.empty(), [&] { array.GetAt(int(slot)); },
                           [&] { told.slots[slot] == none ? told.slots[slot].clear() : void(); }},
                          {slot < told.count, [&] { array.RemoveAt(int(slot)); }, remove},
                          {size < 9, [&] { array.RemoveAll(); }, removeAll},
                          {true, [&] { array.SetGrowFactor(float(size % 7) / 4); },
                           [&] { told.factor = float(size % 7) / 4; }},
                          {told.count < 40, [&] { array.Add(value); }, add}};
        const auto& chosen = operations[std::min<std::size_t>(random() % 10, 6)];
        const auto how = random() % 2 ? AllocationFailure::Throws : AllocationFailure::AnswersNull;
        const int nth = random() % 8 == 0 ? 1 : 1000;
        if (chosen.possible) {
            const auto outcome = RunShortOfMemory(how, nth, chosen.change);
            ASSERT_NE(ShortageOutcome::RaisedBadAlloc, outcome);
            if (outcome == ShortageOutcome::NotMet)
                chosen.told();
        }
        ASSERT_TRUE(told.IsTrue()) << step;
    }
}
