#include "foundation/MTypedPtrArray.h"

#include "tests/support/Allocations.h"

#include <random>
#include <string>
#include <vector>

namespace
{

typedef MTypedPtrArray<MString, const MString&> StringArray;

const wchar_t emptySlot[] = L"no element";

/// An array, and the slots that it is told to have.
struct Told {
    std::size_t Grown(std::size_t minimum) const
    {
        const auto step = static_cast<std::size_t>(static_cast<float>(slots.size()) * factor);
        return std::max({minimum, slots.size() + 1, factor > 1 ? step : 0});
    }
    void Resize(std::size_t size)
    {
        slots.resize(size, emptySlot);
        count = std::min(count, size);
    }
    std::ptrdiff_t Anywhere(std::size_t limit) { return std::ptrdiff_t(random() % limit); }

    void Change(int operation);
    bool IsTrue();

    std::mt19937 random;
    StringArray array;
    std::vector<std::wstring> slots;
    std::size_t count = 0;
    float factor = 0;
};

void Told::Change(int operation)
{
    const auto how = random() % 2 ? AllocationFailure::Throws : AllocationFailure::AnswersNull;
    const auto done = [&](auto change) { // or else nothing is changed
        const auto outcome = RunShortOfMemory(how, random() % 8 == 0 ? 1 : 1000, change);
        EXPECT_NE(ShortageOutcome::RaisedBadAlloc, outcome);
        return outcome == ShortageOutcome::NotMet;
    };
    const std::wstring text(random() % 3, L'x');
    const MString value(text.c_str());
    const int size = int(random() % 40);
    if (operation == 0 && done([&] { array.Resize(size); })) {
        Resize(std::size_t(size));
    } else if (operation == 1 && slots.size() < 40 && done([&] { array.Grow(size); })) {
        Resize(Grown(std::size_t(size)));
    } else if (operation == 2 && !slots.empty()) {
        const std::ptrdiff_t index = Anywhere(slots.size());
        std::wstring& slot = slots[std::size_t(index)];
        if (done([&] { array.GetAt(int(index)); }) && slot == emptySlot)
            slot.clear();
    } else if (operation == 3 && count > 0) {
        const std::ptrdiff_t index = Anywhere(count);
        array.RemoveAt(int(index));
        slots.insert(slots.begin() + std::ptrdiff_t(count--), emptySlot);
        slots.erase(slots.begin() + index);
    } else if (operation == 4 && random() % 4 == 0) {
        array.RemoveAll();
        Resize(count > 0 ? 0 : slots.size());
        Resize(std::size_t(array.GetAllocated()));
    } else if (operation == 5) {
        factor = static_cast<float>(size % 7) / 4;
        array.SetGrowFactor(factor);
    } else if (operation > 5 && count < 40 && done([&] { array.Add(value); })) {
        if (count == slots.size())
            Resize(Grown(0));
        slots[count++] = text;
    }
}

bool Told::IsTrue()
{
    bool alike = array.GetCount() == int(count) && array.GetAllocated() == int(slots.size());
    for (std::size_t i = 0; alike && i < slots.size(); ++i)
        alike = slots[i] == emptySlot || slots[i] == array.GetAt(int(i)).c_str();
    return alike;
}

} // namespace

TEST(MTypedPtrArray, DoesWhatItIsToldAndRaisesWhereMemoryIsShort)
{
    Told told;
    for (int step = 0; step < 20000; ++step) {
        told.Change(int(told.random() % 10));
        ASSERT_TRUE(told.IsTrue()) << step;
    }
}
