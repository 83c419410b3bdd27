#include "foundation/MTypedPtrArray.h"

#include "tests/support/Allocations.h"

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{

typedef MTypedPtrArray<MString, const MString&> StringArray;

/// An array and the slots that it is told to have, driven at random.
class Arrays
{
public:
    void Step()
    {
        static void (Arrays::*const operations[])() = {
            &Arrays::Add,    &Arrays::Add,  &Arrays::GetAt,  &Arrays::RemoveAt,
            &Arrays::Remove, &Arrays::Grow, &Arrays::Resize, &Arrays::SetFactor};
        (this->*operations[Below(sizeof operations / sizeof *operations)])();
        Compare();
    }

private:
    static const std::size_t most = 40;

    std::size_t Below(std::size_t limit) { return random() % limit; }

    /// Whether `operation` had the memory it needed; if not, it has changed nothing.
    template <class Operation>
    bool Done(Operation operation)
    {
        const auto how = Below(2) ? AllocationFailure::Throws : AllocationFailure::AnswersNull;
        const auto outcome = RunShortOfMemory(how, Below(8) == 0 ? 1 : 1000, operation);
        EXPECT_TRUE(outcome == ShortageOutcome::NotMet ||
                    outcome == ShortageOutcome::RaisedMException);
        return outcome == ShortageOutcome::NotMet;
    }

    std::size_t Grown(std::size_t minimum) const
    {
        const auto step = static_cast<std::size_t>(static_cast<float>(slots.size()) * factor);
        return std::max({minimum, slots.size() + 1, factor > 1 ? step : 0});
    }

    void Add()
    {
        const bool full = count == slots.size();
        const std::wstring text(Below(3), L'x');
        const MString value(text.c_str());
        std::int32_t index = 0;
        if (count == most || !Done([&] { index = array.Add(value); }))
            return;
        if (full)
            slots.resize(Grown(0));
        EXPECT_EQ(static_cast<std::int32_t>(count), index);
        slots[count++] = std::make_shared<std::wstring>(text);
    }
    void GetAt()
    {
        if (slots.empty())
            return;
        const std::size_t index = Below(slots.size());
        if (!Done([&] { array.GetAt(static_cast<std::int32_t>(index)); }))
            return;
        if (!slots[index])
            slots[index] = std::make_shared<std::wstring>();
        EXPECT_EQ(*slots[index], array.GetAt(static_cast<std::int32_t>(index)).c_str());
    }
    void RemoveAt()
    {
        if (count == 0)
            return;
        const auto index = static_cast<std::ptrdiff_t>(Below(count));
        array.RemoveAt(static_cast<std::int32_t>(index));
        slots.insert(slots.begin() + static_cast<std::ptrdiff_t>(count), nullptr);
        slots.erase(slots.begin() + index);
        --count;
    }
    void Remove()
    {
        if (Below(4) != 0)
            return;
        array.RemoveAll();
        if (count > 0)
            slots.assign(slots.size(), nullptr);
        count = 0;
    }
    void Grow()
    {
        const std::size_t minimum = Below(most);
        if (slots.size() < most && Done([&] { array.Grow(static_cast<std::int32_t>(minimum)); }))
            slots.resize(Grown(minimum));
    }
    void Resize()
    {
        const std::size_t size = Below(most);
        if (!Done([&] { array.Resize(static_cast<std::int32_t>(size)); }))
            return;
        slots.resize(size);
        count = std::min(count, size);
    }
    void SetFactor()
    {
        factor = static_cast<float>(Below(7)) / 4;
        array.SetGrowFactor(factor);
    }

    void Compare()
    {
        ASSERT_EQ(static_cast<std::int32_t>(count), array.GetCount());
        ASSERT_EQ(static_cast<std::int32_t>(slots.size()), array.GetAllocated());
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_EQ(*slots[i], array.GetAt(static_cast<std::int32_t>(i)).c_str());
    }

    std::mt19937 random;
    StringArray array;
    std::vector<std::shared_ptr<std::wstring>> slots;
    std::size_t count = 0;
    float factor = 0;
};

} // namespace

TEST(MTypedPtrArray, DoesWhatItsModelDoesAndRaisesWhereMemoryIsShort)
{
    Arrays arrays;
    for (int step = 0; step < 20000 && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        arrays.Step();
    }
}
